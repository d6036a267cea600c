#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/inference/ort_runtime.h"

namespace zre::ort {

/// Hands an object back to the runtime.
template <class Release>
struct Releaser
{
    template <class T>
    void operator()(T* object) const
    {
        call<Release>(object);
    }
};

template <class T, class Release>
using Handle = std::unique_ptr<T, Releaser<Release>>;

using Env = Handle<OrtEnv, slot::ReleaseEnv>;
using Session = Handle<OrtSession, slot::ReleaseSession>;
using SessionOptions = Handle<OrtSessionOptions, slot::ReleaseSessionOptions>;
using MemoryInfo = Handle<OrtMemoryInfo, slot::ReleaseMemoryInfo>;
using Value = Handle<OrtValue, slot::ReleaseValue>;
using ShapeInfo = Handle<OrtTensorTypeAndShapeInfo, slot::ReleaseTensorTypeAndShapeInfo>;

/// A batch of one picture: 1, channels, height, width.
using InputShape = std::array<std::int64_t, 4>;

/// What a model gave: the samples in row order, alive as long as the record.
struct Output
{
    Value value;
    const float* data = nullptr;
    std::vector<std::int64_t> shape; ///< empty unless it is a tensor of floats

    /// The size of a dimension counted from the last, which is 0; 0 where there is none.
    std::int64_t fromLast(std::size_t position) const;
    /// Whether the tensor holds `count` samples or more.
    bool holds(std::size_t count) const;
};

/// A model file in use: one input, one output, and the session that runs it.
///
/// The session is made by the first run and kept, because making one is slow.
class Model
{
public:
    /// `logId` names the model in the runtime's own messages; not owned.
    explicit Model(const char* logId)
        : m_logId(logId)
    {
    }

    /// Opens `path` unless it is open already. False with a message, and nothing open.
    bool open(const std::string& path, std::string* err);
    void close();

    /// Runs the open model on `samples`, which are `shape`'s product in number. `output` changes
    /// only on success. False with a message.
    bool run(std::vector<float>& samples, const InputShape& shape, Output& output,
             std::string* err) const;

private:
    bool openSession(const std::string& path, std::string* err);
    bool readNames(std::string* err);

    const char* m_logId;
    std::string m_path;
    Env m_env;
    SessionOptions m_options;
    Session m_session; ///< after its environment, so that it goes first
    std::string m_inputName;
    std::string m_outputName;
};

/// Whether `path` is a file that can be taken for a model.
bool isModelFile(const std::string& path);

} // namespace zre::ort
