#pragma once

#include <memory>

#include <tbb/cache_aligned_allocator.h>

namespace bkedittimecheck {

/// The allocator of the engine's concurrent queues: cache-aligned, so that the main thread's
/// pushes and the worker's pops do not share cache lines. TBB takes that memory from its own
/// pools, which LeakSanitizer does not scan, so what the queues still hold at exit would be
/// reported as leaked; the address-sanitizer build uses the standard allocator instead, and its
/// tests suppress the queue pages themselves (tests/sanitizers/lsan.supp), whose list TBB keeps
/// in its pools whatever the allocator.
#ifdef BKETC_PLAIN_QUEUE_ALLOCATOR
template <typename T>
using QueueAllocator = std::allocator<T>;
#else
template <typename T>
using QueueAllocator = tbb::cache_aligned_allocator<T>;
#endif

}  // namespace bkedittimecheck
