// The program allocates with jemalloc. After a scan of very many items glibc's malloc keeps the freed memory, and
// malloc_trim blocks every thread that allocates meanwhile, the main thread too, for tens of milliseconds. jemalloc has
// an arena for few threads, so they seldom contend, and a background thread that purges what has been free for 200 ms.
// There are only four arenas, so that the next scan reuses what the last one freed.
//
// jemalloc reads this variable when it starts: https://jemalloc.net/jemalloc.3.html, "TUNING".
extern "C" const char* malloc_conf;
const char* malloc_conf = "background_thread:true,narenas:4,dirty_decay_ms:200,muzzy_decay_ms:0";
