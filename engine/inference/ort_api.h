#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// The part of ONNX Runtime's C interface that is called, declared here because the runtime is
/// found when the program runs and need not be there when it is built.
namespace zre::ort {

// Only ever seen through pointers.
struct OrtStatus;
struct OrtEnv;
struct OrtSession;
struct OrtSessionOptions;
struct OrtRunOptions;
struct OrtAllocator;
struct OrtMemoryInfo;
struct OrtValue;
struct OrtTensorTypeAndShapeInfo;

/// Slots of the table up to the last one called. The runtime only ever appends, so that a number
/// means the same entry in every version.
inline constexpr std::size_t kSlotCount = 101;

struct OrtApi
{
    using AnyFunction = void (*)();
    std::array<AnyFunction, kSlotCount> slots;
};

/// What the library's one exported function, `OrtGetApiBase`, returns.
struct OrtApiBase
{
    const OrtApi* (*GetApi)(std::uint32_t version); ///< null for a version it does not know
    const char* (*GetVersionString)();
};

static_assert(sizeof(OrtApi) == kSlotCount * sizeof(void*));
static_assert(sizeof(OrtApiBase) == 2 * sizeof(void*));

/// An entry of the table: its number and its type. Entries that can fail return a status that the
/// caller releases, null for success.
template <std::size_t Number, class Signature>
struct Slot
{
    static_assert(Number < kSlotCount);
    static constexpr std::size_t kNumber = Number;
    using Function = Signature*;
};

namespace slot {

using GetErrorMessage = Slot<2, const char*(const OrtStatus*)>;
using CreateEnv = Slot<3, OrtStatus*(int level, const char* logId, OrtEnv** out)>;
using CreateSession = Slot<7, OrtStatus*(const OrtEnv*, const char* modelPath,
                                         const OrtSessionOptions*, OrtSession** out)>;
using Run = Slot<9, OrtStatus*(OrtSession*, const OrtRunOptions*, const char* const* inputNames,
                               const OrtValue* const* inputs, std::size_t inputCount,
                               const char* const* outputNames, std::size_t outputCount,
                               OrtValue** outputs)>;
using CreateSessionOptions = Slot<10, OrtStatus*(OrtSessionOptions** out)>;
using SetSessionGraphOptimizationLevel = Slot<23, OrtStatus*(OrtSessionOptions*, int level)>;
using SetIntraOpNumThreads = Slot<24, OrtStatus*(OrtSessionOptions*, int threads)>;
using SessionGetInputName =
    Slot<36, OrtStatus*(const OrtSession*, std::size_t index, OrtAllocator*, char** out)>;
using SessionGetOutputName =
    Slot<37, OrtStatus*(const OrtSession*, std::size_t index, OrtAllocator*, char** out)>;
/// The bytes are borrowed and must outlive the value.
using CreateTensorWithDataAsOrtValue =
    Slot<49, OrtStatus*(const OrtMemoryInfo*, void* data, std::size_t bytes,
                        const std::int64_t* shape, std::size_t rank, int type, OrtValue** out)>;
using GetTensorMutableData = Slot<51, OrtStatus*(OrtValue*, void** out)>;
using GetTensorElementType = Slot<60, OrtStatus*(const OrtTensorTypeAndShapeInfo*, int* out)>;
using GetDimensionsCount = Slot<61, OrtStatus*(const OrtTensorTypeAndShapeInfo*, std::size_t* out)>;
using GetDimensions =
    Slot<62, OrtStatus*(const OrtTensorTypeAndShapeInfo*, std::int64_t* values, std::size_t count)>;
using GetTensorTypeAndShape =
    Slot<65, OrtStatus*(const OrtValue*, OrtTensorTypeAndShapeInfo** out)>;
using CreateCpuMemoryInfo =
    Slot<69, OrtStatus*(int allocatorType, int memoryType, OrtMemoryInfo** out)>;
using AllocatorFree = Slot<76, OrtStatus*(OrtAllocator*, void*)>;
/// Shared by the process; never released.
using GetAllocatorWithDefaultOptions = Slot<78, OrtStatus*(OrtAllocator** out)>;
using ReleaseEnv = Slot<92, void(OrtEnv*)>;
using ReleaseStatus = Slot<93, void(OrtStatus*)>;
using ReleaseMemoryInfo = Slot<94, void(OrtMemoryInfo*)>;
using ReleaseSession = Slot<95, void(OrtSession*)>;
using ReleaseValue = Slot<96, void(OrtValue*)>;
using ReleaseTensorTypeAndShapeInfo = Slot<99, void(OrtTensorTypeAndShapeInfo*)>;
using ReleaseSessionOptions = Slot<100, void(OrtSessionOptions*)>;

} // namespace slot

inline constexpr int kLogError = 3;
inline constexpr int kOptimizeAll = 99;
inline constexpr int kElementFloat = 1;
inline constexpr int kArenaAllocator = 1;
inline constexpr int kDefaultMemory = 0;

} // namespace zre::ort
