// The program allocates memory with jemalloc: with very many items, the C library's own allocator keeps what a scan has
// freed, and giving that back holds up for tens of milliseconds whoever allocates meanwhile, the main thread among
// them. Here threads seldom meet, and one of the library's own gives back what has been free for a fifth of a second;
// so few arenas that the next scan finds there what the last has freed.
//
// The library looks for this name when it starts: https://jemalloc.net/jemalloc.3.html, "TUNING".
extern "C" const char* malloc_conf;
const char* malloc_conf = "background_thread:true,narenas:4,dirty_decay_ms:200,muzzy_decay_ms:0";
