// A small pool of persistent worker threads for the renderer. run() hands out task
// indices 0..count-1 to the caller and up to `threads - 1` workers and returns when all
// are done. Called from one thread at a time.
#pragma once
#include <functional>

namespace zelmar::render {

void parallelFor(int threads, int count, const std::function<void(int task)>& fn);

} // namespace zelmar::render
