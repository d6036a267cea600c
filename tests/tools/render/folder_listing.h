#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace zrtest {

/// Everything in `folder`, hidden or not, however deep, in the order of names.
inline std::vector<std::string> listing(const std::filesystem::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        names.push_back(entry.path().lexically_relative(folder).string());
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace zrtest
