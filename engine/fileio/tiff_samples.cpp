#include "engine/fileio/tiff_samples.h"

#include <array>
#include <cstring>

#include <tiffio.h>

#include "engine/fileio/sample_scale.h"

namespace zre::fileio {

namespace {

template <class Stored>
void convertSamples(const std::uint8_t* in, std::size_t stride, float* out, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i, in += stride) {
        Stored sample;
        std::memcpy(&sample, in, sizeof sample);
        out[i] = unitSample(sample);
    }
}

void convertHalves(const std::uint8_t* in, std::size_t stride, float* out, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i, in += stride) {
        std::uint16_t sample;
        std::memcpy(&sample, in, sizeof sample);
        out[i] = unitSample(halfToFloat(sample));
    }
}

constexpr std::array kSampleTypes{
    TiffSampleType{8, SAMPLEFORMAT_UINT, "UInt8", convertSamples<std::uint8_t>},
    TiffSampleType{16, SAMPLEFORMAT_UINT, "UInt16", convertSamples<std::uint16_t>},
    TiffSampleType{32, SAMPLEFORMAT_UINT, "UInt32", convertSamples<std::uint32_t>},
    TiffSampleType{8, SAMPLEFORMAT_INT, "Int8", convertSamples<std::int8_t>},
    TiffSampleType{16, SAMPLEFORMAT_INT, "Int16", convertSamples<std::int16_t>},
    TiffSampleType{32, SAMPLEFORMAT_INT, "Int32", convertSamples<std::int32_t>},
    TiffSampleType{16, SAMPLEFORMAT_IEEEFP, "Float16", convertHalves},
    TiffSampleType{32, SAMPLEFORMAT_IEEEFP, "Float32", convertSamples<float>},
    TiffSampleType{64, SAMPLEFORMAT_IEEEFP, "Float64", convertSamples<double>},
};

} // namespace

const TiffSampleType* findTiffSampleType(int bits, int format)
{
    for (const TiffSampleType& type : kSampleTypes)
        if (type.bits == bits && type.format == format)
            return &type;
    return nullptr;
}

} // namespace zre::fileio
