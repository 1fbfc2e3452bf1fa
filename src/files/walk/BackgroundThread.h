#pragma once

namespace brimvault::files {

/// Has the calling thread stand back from then on for those that show the program, on a machine where not all can run
/// at once. What nobody else wants of the processors it still gets.
void standBack();

}  // namespace brimvault::files
