#pragma once

#include <vector>

#include "engine/image/image.h"

namespace zre {

/// Reads plane 0 of `map` as if it had another size, by nearest neighbour: column x * mapWidth /
/// width and row y * mapHeight / height, in integers. Only one line is ever held.
///
/// `map` must be usable and must outlive this; `width` and `height` are at least 1.
class NearestRows
{
public:
    NearestRows(const Image& map, int width, int height);

    /// The `width` samples of row `y`; they stay valid until the next call.
    const float* row(int y);

private:
    const Image& m_map;
    int m_height;
    std::vector<int> m_columns; ///< empty when the widths agree and a row can be handed out itself
    std::vector<float> m_line;
};

} // namespace zre
