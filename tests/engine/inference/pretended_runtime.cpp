#include "tests/engine/inference/pretended_runtime.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
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

Object* hand()
{
    ++live;
    return new Object;
}

void giveBack(Object* object)
{
    live -= object ? 1 : 0;
    delete object;
}

/// The status of a call of `slot`: an object when it is its turn to fail.
Object* status(int slot)
{
    if (calls++ != failAt)
        return nullptr;
    failedSlot = slot;
    return hand();
}

template <int Slot>
Object* make(Object** out)
{
    Object* failure = status(Slot);
    if (!failure)
        *out = hand();
    return failure;
}

Object* createEnv(int, const char*, Object** out)
{
    return make<3>(out);
}
Object* createSession(Object*, const char*, Object*, Object** out)
{
    return make<7>(out);
}
Object* createOptions(Object** out)
{
    return make<10>(out);
}
Object* setNumber23(Object*, int)
{
    return status(23);
}
Object* setNumber24(Object*, int)
{
    return status(24);
}
Object* memoryInfo(int, int, Object** out)
{
    return make<69>(out);
}
Object* allocator(Object** out)
{
    static Object shared;
    *out = &shared;
    return status(78);
}

template <int Slot>
Object* name(Object*, std::size_t, Object*, char** out)
{
    Object* failure = status(Slot);
    if (!failure) {
        ++live;
        *out = strdup("x");
    }
    return failure;
}

Object* freeName(Object*, void* text)
{
    live -= text ? 1 : 0;
    std::free(text);
    return status(76);
}

Object* createTensor(Object*, void* data, std::size_t bytes, const std::int64_t* shape,
                     std::size_t rank, int, Object** out)
{
    Object* failure = make<49>(out);
    if (!failure) {
        (*out)->shape.assign(shape, shape + rank);
        const float* first = static_cast<const float*>(data);
        (*out)->samples.assign(first, first + bytes / sizeof(float));
    }
    return failure;
}

Object* run(Object*, Object*, const char**, Object** inputs, std::size_t, const char**, std::size_t,
            Object** out)
{
    Object* failure = make<9>(out);
    if (!failure)
        **out = *inputs[0];
    return failure;
}

Object* describe(Object* value, Object** out)
{
    Object* failure = make<65>(out);
    if (!failure)
        (*out)->shape = value->shape;
    return failure;
}

Object* elementType(Object*, int* out)
{
    return *out = 1, status(60);
}
Object* rankOf(Object* info, std::size_t* out)
{
    return *out = info->shape.size(), status(61);
}
Object* sizes(Object* info, std::int64_t* out, std::size_t count)
{
    std::memcpy(out, info->shape.data(), count * sizeof *out);
    return status(62);
}
Object* data(Object* value, void** out)
{
    return *out = value->samples.data(), status(51);
}
const char* message(Object*)
{
    return "as told.";
}
void unexpected()
{
    std::abort();
}

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
    for (Entry& entry : table)
        entry = unexpected;
    put(2, message), put(3, createEnv), put(7, createSession), put(9, run), put(10, createOptions);
    put(23, setNumber23), put(24, setNumber24), put(36, name<36>), put(37, name<37>);
    put(49, createTensor), put(51, data), put(60, elementType), put(61, rankOf), put(62, sizes);
    put(65, describe), put(69, memoryInfo), put(76, freeName), put(78, allocator);
    for (const int release : {92, 93, 94, 95, 96, 99, 100})
        put(release, giveBack);
    return table;
}

const char* version()
{
    return "0.7.1";
}

struct Base
{
    const void* (*getApi)(std::uint32_t);
    const char* (*version)();
};

} // namespace

extern "C" {

const void* OrtGetApiBase()
{
    static const Base base{getApi, version};
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
