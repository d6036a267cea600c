#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include "engine/image/image.h"

namespace zre {

/// Zeroed memory whose pages cost nothing until they are touched.
template <class T>
class LazyZeros
{
public:
    explicit LazyZeros(std::size_t count)
        : m_data(static_cast<T*>(std::calloc(count, sizeof(T))))
    {
        if (!m_data && count > 0)
            throw std::bad_alloc();
    }
    T& operator[](std::size_t index) { return m_data.get()[index]; }
    const T* data() const { return m_data.get(); }

private:
    struct Free
    {
        void operator()(T* data) const { std::free(data); }
    };
    std::unique_ptr<T, Free> m_data;
};

/// The brightest channel of a pixel of a stars layer, at least 0; what is no finite number counts
/// as 0.
float layerLight(const Image& layer, std::size_t pixel);

/// The same of every pixel.
std::vector<float> layerPlane(const Image& layer);

} // namespace zre
