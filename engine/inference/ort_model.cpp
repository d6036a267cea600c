#include "engine/inference/ort_model.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace zre::ort {

namespace {

/// Makes an object by an entry whose last argument receives it.
template <class Entry, class Owner, class... Arguments>
bool make(Owner& owner, std::string* err, Arguments... arguments)
{
    typename Owner::pointer object = nullptr;
    OrtStatus* status = call<Entry>(arguments..., &object);
    owner.reset(object);
    return !failed(status, err);
}

/// The name of the first input or output.
template <class Entry>
bool readName(const OrtSession* session, std::string& name, std::string* err)
{
    OrtAllocator* allocator = nullptr;
    if (failed(call<slot::GetAllocatorWithDefaultOptions>(&allocator), err))
        return false;
    const auto giveBack = [allocator](char* text) {
        failed(call<slot::AllocatorFree>(allocator, static_cast<void*>(text)), nullptr);
    };
    char* text = nullptr;
    OrtStatus* status = call<Entry>(session, std::size_t{0}, allocator, &text);
    const std::unique_ptr<char, decltype(giveBack)> owner(text, giveBack);
    if (failed(status, err))
        return false;
    name = text ? text : "";
    return true;
}

/// Takes over where the samples lie and what shape they have. Only floats are looked at: any other
/// tensor, and any other kind of value, is left without a shape.
bool describe(Output& output, std::string* err)
{
    if (!output.value)
        return true;
    ShapeInfo info;
    if (!make<slot::GetTensorTypeAndShape>(info, err,
                                           static_cast<const OrtValue*>(output.value.get())))
        return false;
    const OrtTensorTypeAndShapeInfo* about = info.get();
    int type = 0;
    std::size_t rank = 0;
    if (failed(call<slot::GetTensorElementType>(about, &type), err) ||
        failed(call<slot::GetDimensionsCount>(about, &rank), err))
        return false;
    if (type != kElementFloat)
        return true;
    std::vector<std::int64_t> shape(rank);
    void* data = nullptr;
    if (failed(call<slot::GetDimensions>(about, shape.data(), rank), err) ||
        failed(call<slot::GetTensorMutableData>(output.value.get(), &data), err))
        return false;
    output.data = static_cast<const float*>(data);
    output.shape = std::move(shape);
    return true;
}

} // namespace

std::int64_t Output::fromLast(std::size_t position) const
{
    return position < shape.size() ? shape[shape.size() - 1 - position] : 0;
}

bool Output::holds(std::size_t count) const
{
    if (!data || shape.empty())
        return false;
    std::size_t product = 1;
    for (const std::int64_t size : shape)
        if (size <= 0 || __builtin_mul_overflow(product, static_cast<std::size_t>(size), &product))
            return false;
    return product >= count;
}

bool isModelFile(const std::string& path)
{
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored);
}

bool Model::open(const std::string& path, std::string* err)
{
    if (m_session && m_path == path)
        return true;
    close();
    if (!isModelFile(path))
        return fail(err, "model file not found: " + path);
    if (openSession(path, err) && readNames(err)) {
        m_path = path;
        return true;
    }
    close();
    return false;
}

void Model::close()
{
    m_session.reset();
    m_options.reset();
    m_env.reset();
    m_path.clear();
}

bool Model::openSession(const std::string& path, std::string* err)
{
    return make<slot::CreateSessionOptions>(m_options, err) &&
           !failed(call<slot::SetIntraOpNumThreads>(m_options.get(), 0), err) &&
           !failed(call<slot::SetSessionGraphOptimizationLevel>(m_options.get(), kOptimizeAll),
                   err) &&
           make<slot::CreateEnv>(m_env, err, kLogError, m_logId) &&
           make<slot::CreateSession>(m_session, err, static_cast<const OrtEnv*>(m_env.get()),
                                     path.c_str(),
                                     static_cast<const OrtSessionOptions*>(m_options.get()));
}

bool Model::readNames(std::string* err)
{
    return readName<slot::SessionGetInputName>(m_session.get(), m_inputName, err) &&
           readName<slot::SessionGetOutputName>(m_session.get(), m_outputName, err);
}

bool Model::run(std::vector<float>& samples, const InputShape& shape, Output& output,
                std::string* err) const
{
    MemoryInfo memory;
    Value input;
    if (!make<slot::CreateCpuMemoryInfo>(memory, err, kArenaAllocator, kDefaultMemory) ||
        !make<slot::CreateTensorWithDataAsOrtValue>(
            input, err, static_cast<const OrtMemoryInfo*>(memory.get()),
            static_cast<void*>(samples.data()), samples.size() * sizeof(float), shape.data(),
            shape.size(), kElementFloat))
        return false;
    const OrtValue* inputs = input.get();
    const char* inputName = m_inputName.c_str();
    const char* outputName = m_outputName.c_str();
    Output result;
    if (!make<slot::Run>(result.value, err, m_session.get(),
                         static_cast<const OrtRunOptions*>(nullptr), &inputName, &inputs,
                         std::size_t{1}, &outputName, std::size_t{1}) ||
        !describe(result, err))
        return false;
    output = std::move(result);
    return true;
}

} // namespace zre::ort
