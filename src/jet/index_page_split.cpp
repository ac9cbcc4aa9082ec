#include "jet/index_page_split.h"

#include <algorithm>

namespace jet {

std::vector<IndexPageImage> SplitLeaf(const IndexPageImage& image, bool ascending,
                                      const Format& format) {
    std::size_t total = 0;
    for (const Bytes& entry : image.entries)
        total += entry.size();
    std::vector<IndexPageImage> groups(1);
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < image.entries.size(); ++i) {
        IndexPageImage& group = groups.back();
        const bool last = i + 1 == image.entries.size();
        const bool enough = ascending ? last : bytes + image.entries[i].size() / 2 > total / 2;
        group.entries.push_back(image.entries[i]);
        const bool fits = group.EncodedBytes(format) <= IndexRoom(format);
        if (group.entries.size() > 1 && (!fits || (groups.size() == 1 && enough))) {
            group.entries.pop_back();
            groups.emplace_back().entries.push_back(image.entries[i]);
        }
        bytes += image.entries[i].size();
    }
    return groups;
}

std::vector<IndexPageImage> SplitNode(const IndexPageImage& image, bool ascending,
                                      std::vector<Bytes>& lasts) {
    const std::size_t count = image.entries.size();
    std::size_t middle = count - 1;  // entries 0 .. middle-1 go left, the last of them as tail
    if (!ascending) {
        std::size_t total = 0;
        for (const Bytes& entry : image.entries)
            total += entry.size();
        std::size_t bytes = 0;
        for (middle = 0; middle < count && bytes < total / 2; ++middle)
            bytes += image.entries[middle].size();
    }
    middle = std::clamp<std::size_t>(middle, 2, count - 1);
    IndexPageImage left;
    IndexPageImage right;
    const auto cut = image.entries.begin() + static_cast<std::ptrdiff_t>(middle);
    left.entries.assign(image.entries.begin(), cut - 1);
    left.tail = image.Child(middle - 1);
    right.entries.assign(cut, image.entries.end());
    right.tail = image.tail;
    Bytes last = image.entries[middle - 1];
    last.resize(last.size() - kChildBytes);
    lasts = {std::move(last), {}};
    return {std::move(left), std::move(right)};
}

}  // namespace jet
