#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct alignas(4096) Page
{
    unsigned char bytes[4096];
};

} // namespace

TEST(HugePages, LargeBlocksKeepTheirContentsThroughGrowthAndReuse)
{
    for (int round = 0; round < 3; ++round) {
        std::vector<std::uint32_t> grown;
        for (std::uint32_t i = 0; i < 4'000'000; ++i)
            grown.push_back(i);
        std::vector<std::uint32_t> expected(grown.size());
        std::iota(expected.begin(), expected.end(), 0u);
        EXPECT_EQ(grown, expected);
        const std::vector<float> fresh(3'000'000);
        EXPECT_EQ(std::count(fresh.begin(), fresh.end(), 0.0f), 3'000'000)
            << "a reused block shows what it held before";
    }
}

TEST(HugePages, AlignedAndPlainBlocksOfEverySizePairWithTheirDelete)
{
    for (std::size_t size = 1; size < (std::size_t{1} << 24); size = size * 3 + 1) {
        const auto pages = std::make_unique<Page[]>(size / sizeof(Page) + 1);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pages.get()) % alignof(Page), 0u);
        void* plain = ::operator new(size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(plain) % alignof(std::max_align_t), 0u);
        ::operator delete(plain, size);
    }
    void* first = ::operator new(0);
    void* second = ::operator new(0);
    EXPECT_NE(first, second) << "empty blocks must be told apart";
    ::operator delete(first);
    ::operator delete(second);
}

TEST(HugePages, ABlockBeyondTheMachineThrowsOrYieldsNull)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer's own allocator answers";
#endif
    volatile std::size_t senseless = std::numeric_limits<std::ptrdiff_t>::max();
    EXPECT_THROW(::operator delete(::operator new(senseless)), std::bad_alloc);
    EXPECT_EQ(::operator new(senseless, std::nothrow), nullptr);
}

TEST(HugePages, ANewHandlerIsAskedUntilItGivesUp)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer's own allocator answers";
#endif
    static int calls;
    calls = 0;
    std::set_new_handler([] {
        if (++calls == 3)
            std::set_new_handler(nullptr);
    });
    volatile std::size_t senseless = std::numeric_limits<std::ptrdiff_t>::max();
    EXPECT_THROW(::operator delete(::operator new(senseless)), std::bad_alloc);
    EXPECT_EQ(calls, 3);
}
