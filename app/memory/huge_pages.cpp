/// The program's `operator new` and `operator delete`, for blocks the size of a picture's plane.
///
/// A fresh plane of 24 megapixels is 96 MB, and the page faults of its first touch cost more than
/// most filters that run over it. So large blocks ask for huge pages, and freed ones stay with the
/// process to be handed out again. Both are advice: blocks come from malloc and go back with free,
/// as everywhere. The array, nothrow and sized forms of the standard library end here; the aligned
/// ones keep its own, which also pair with free.
///
/// Sanitizers bring their own allocator, whose checks a replacement would switch off.

#if defined(__has_feature)
#define ZR_HAS_FEATURE(feature) __has_feature(feature)
#else
#define ZR_HAS_FEATURE(feature) 0
#endif

#if defined(__GLIBC__) || __has_include(<gnu/libc-version.h>)
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) &&                             \
    !ZR_HAS_FEATURE(address_sanitizer) && !ZR_HAS_FEATURE(thread_sanitizer) &&                     \
    !ZR_HAS_FEATURE(memory_sanitizer)
#define ZR_HUGE_PAGES
#endif
#endif

#ifdef ZR_HUGE_PAGES

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

#include <malloc.h>
#include <sys/mman.h>

namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;
constexpr std::size_t kLargeBlock = std::size_t{4} << 20;

/// Freed memory that stays with the process: a few planes of a large photograph.
constexpr int kKeptBytes = 1 << 30;

/// Lets blocks up to a plane's size come from the heap, where freed ones are found again, in place
/// of mappings of their own. Runs before `main`; what is allocated earlier is served all the same.
[[maybe_unused]] const bool thresholdsSet = [] {
    return mallopt(M_MMAP_THRESHOLD, kKeptBytes) == 1 && mallopt(M_TRIM_THRESHOLD, kKeptBytes) == 1;
}();

/// Asks for huge pages on the part of a block that can hold them; `size` is at least
/// `kLargeBlock`, so there is one. Whether the system grants them changes nothing but speed, so its
/// answer does not matter; `errno` stays the caller's.
void adviseHugePages(void* block, std::size_t size)
{
    const int savedErrno = errno;
    const std::size_t before = reinterpret_cast<std::uintptr_t>(block) % kHugePage;
    const std::size_t skipped = before > 0 ? kHugePage - before : 0;
    const std::size_t length = (size - skipped) / kHugePage * kHugePage;
    madvise(static_cast<char*>(block) + skipped, length, MADV_HUGEPAGE);
    errno = savedErrno;
}

} // namespace

void* operator new(std::size_t size)
{
    for (;;) {
        if (void* block = std::malloc(size > 0 ? size : 1)) {
            if (size >= kLargeBlock)
                adviseHugePages(block, size);
            return block;
        }
        const std::new_handler handler = std::get_new_handler();
        if (!handler)
            throw std::bad_alloc();
        handler();
    }
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

#endif
