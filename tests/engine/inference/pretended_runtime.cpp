#include "tests/engine/inference/pretended_runtime.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <vector>

// Written from the numbers of the slots, without the header under test.
namespace {

struct Object
{
    std::vector<std::int64_t> shape;
    std::vector<float> samples;
};

int answer = 0;
int failAt = -1;
int calls = 0;
int failedSlot = -1;
int live = 0;
int asked = 0;

/// Every entry that hands out or takes back an object, or tells how it went.
struct Entries
{
    static Object* hand() { return ++live, new Object; }
    static void giveBack(Object* object) { live -= object ? 1 : 0, delete object; }

    /// The status of a call of `slot`: an object when it is its turn to fail.
    static Object* status(int slot)
    {
        return calls++ == failAt ? (failedSlot = slot, hand()) : nullptr;
    }
    template <int Slot>
    static Object* set(Object*, int)
    {
        return status(Slot);
    }
    template <int Slot, class... Before>
    struct Maker
    {
        static Object* make(Before..., Object** out)
        {
            Object* failure = status(Slot);
            if (!failure)
                *out = hand();
            return failure;
        }
    };
    template <int Slot>
    static Object* name(Object*, std::size_t, Object*, char** out)
    {
        Object* failure = status(Slot);
        if (!failure)
            ++live, *out = strdup("x");
        return failure;
    }
    static Object* freeName(Object*, void* text)
    {
        live -= text ? 1 : 0;
        std::free(text);
        return status(76);
    }
    static Object* allocator(Object** out)
    {
        static Object shared;
        return *out = &shared, status(78);
    }
    static Object* createTensor(Object*, void* data, std::size_t bytes, const std::int64_t* shape,
                                std::size_t rank, int, Object** out)
    {
        Object* failure = Maker<49>::make(out);
        const float* first = static_cast<const float*>(data);
        if (!failure)
            **out = {{shape, shape + rank}, {first, first + bytes / sizeof(float)}};
        return failure;
    }
    static Object* run(Object*, Object*, const char**, Object** inputs, std::size_t, const char**,
                       std::size_t, Object** out)
    {
        Object* failure = Maker<9>::make(out);
        if (!failure)
            **out = *inputs[0];
        return failure;
    }
    static Object* describe(Object* value, Object** out)
    {
        Object* failure = Maker<65>::make(out);
        if (!failure)
            (*out)->shape = value->shape;
        return failure;
    }
    static Object* type(Object*, int* out) { return *out = 1, status(60); }
    static Object* rank(Object* i, std::size_t* out) { return *out = i->shape.size(), status(61); }
    static Object* sizes(Object* info, std::int64_t* out, std::size_t count)
    {
        std::copy_n(info->shape.begin(), count, out);
        return status(62);
    }
    static Object* data(Object* value, void** out)
    {
        return *out = value->samples.data(), status(51);
    }
    static const char* message(Object*) { return "as told."; }
    static void unexpected() { std::abort(); }
};

using Entry = void (*)();
Entry table[239];

template <class Function>
void put(int slot, Function function)
{
    table[slot] = reinterpret_cast<Entry>(function);
}

const void* getApi(std::uint32_t version)
{
    if (answer == 2 || (answer == 3 && version > 14))
        return nullptr;
    using E = Entries;
    std::fill(std::begin(table), std::end(table), E::unexpected);
    put(2, E::message), put(3, E::Maker<3, int, const char*>::make);
    put(7, E::Maker<7, Object*, const char*, Object*>::make), put(9, E::run);
    put(10, E::Maker<10>::make), put(23, E::set<23>), put(24, E::set<24>);
    put(36, E::name<36>), put(37, E::name<37>), put(49, E::createTensor), put(51, E::data);
    put(60, E::type), put(61, E::rank), put(62, E::sizes), put(65, E::describe);
    put(69, E::Maker<69, int, int>::make), put(76, E::freeName), put(78, E::allocator);
    for (const int release : {92, 93, 94, 95, 96, 99, 100})
        put(release, E::giveBack);
    return table;
}

struct Base
{
    const void* (*api)(std::uint32_t) = getApi;
    const char* (*version)() = [] { return "0.7.1"; };
};

} // namespace

extern "C" {

const void* OrtGetApiBase()
{
    static const Base base;
    ++asked;
    return answer == 1 ? nullptr : &base;
}

void pretendAnswer(int kind)
{
    answer = kind;
}
void pretendFailure(int call)
{
    failAt = call, calls = 0, failedSlot = -1;
}
int pretendFailedSlot()
{
    return failedSlot;
}
int pretendLive()
{
    return live;
}
int pretendAsked()
{
    return asked;
}
}
