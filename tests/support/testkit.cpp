#include "tests/support/testkit.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>

#include <unistd.h>

namespace zrtest {

zre::Image noise(int width, int height, int model, std::uint32_t seed)
{
    zre::Image img(width, height, model);
    std::mt19937 random(seed);
    for (float& v : img.data)
        v = static_cast<float>(random() >> 8) * (1.0f / 16777216.0f);
    return img;
}

zre::Image ramp(int width, int height)
{
    zre::Image img(width, height, 0);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            img.plane(0)[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                         static_cast<std::size_t>(x)] =
                width > 1 ? static_cast<float>(x) / static_cast<float>(width - 1) : 0.0f;
    return img;
}

testing::AssertionResult imagesNear(const zre::Image& actual, const zre::Image& expected,
                                    double tolerance)
{
    if (!actual.sameSize(expected) || actual.channels != expected.channels ||
        actual.data.size() != expected.data.size())
        return testing::AssertionFailure()
               << "shape " << actual.width << "x" << actual.height << "x" << actual.channels
               << " against " << expected.width << "x" << expected.height << "x"
               << expected.channels;
    double worst = -1.0;
    std::size_t where = 0;
    std::size_t beyond = 0;
    for (std::size_t i = 0; i < actual.data.size(); ++i) {
        const float a = actual.data[i];
        const float b = expected.data[i];
        if (std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b)) ||
            (a == b && tolerance > 0))
            continue;
        const double difference =
            std::isnan(a) || std::isnan(b) ? INFINITY : std::fabs(double(a) - double(b));
        if (difference <= tolerance && tolerance > 0)
            continue;
        ++beyond;
        if (difference > worst) {
            worst = difference;
            where = i;
        }
    }
    if (beyond == 0)
        return testing::AssertionSuccess();
    const std::size_t n = actual.pixelCount();
    const std::size_t w = static_cast<std::size_t>(actual.width);
    return testing::AssertionFailure() << beyond << " samples differ; worst at x " << where % n % w
                                       << " y " << where % n / w << " channel " << where / n << ": "
                                       << actual.data[where] << " against " << expected.data[where];
}

std::filesystem::path scratchFolder()
{
    struct Folder
    {
        std::filesystem::path path =
            std::filesystem::temp_directory_path() / ("zerrith-test-" + std::to_string(getpid()));
        Folder() { std::filesystem::create_directories(path); }
        ~Folder()
        {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
        Folder(const Folder&) = delete;
        Folder& operator=(const Folder&) = delete;
    };
    static const Folder folder;
    return folder.path;
}

void writeBytes(const std::filesystem::path& path, const std::vector<std::uint8_t>& bytes)
{
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

std::vector<std::uint8_t> readBytes(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::optional<std::filesystem::path> sample(const std::string& name)
{
    const char* folder = std::getenv("ZR_SAMPLES");
    const std::filesystem::path path =
        std::filesystem::path(folder ? folder : ZR_SAMPLES_FOLDER) / name;
    std::error_code ignored;
    if (std::filesystem::exists(path, ignored))
        return path;
    return std::nullopt;
}

} // namespace zrtest
