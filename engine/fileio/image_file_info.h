#pragma once

#include <string>

namespace zre {

/// What a file stores, before it becomes an `Image`.
struct ImageFileInfo
{
    std::string container;    ///< "XISF", "FITS", "TIFF", "PNG", ...
    std::string sampleFormat; ///< "UInt8", "UInt16", "UInt32", "Float32", "Float64", ...
    int width = 0;
    int height = 0;
    int channels = 0;
    int bitDepth = 0;    ///< of one sample as stored
    bool linear = false; ///< the data are linear: a picture of them wants a stretch
};

} // namespace zre
