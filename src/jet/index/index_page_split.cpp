#include "jet/index/index_page_split.h"

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
                                      const Format& format, std::vector<Bytes>& lasts) {
    const std::size_t count = image.entries.size();
    std::size_t total = 0;
    for (const Bytes& entry : image.entries)
        total += entry.size();
    std::vector<IndexPageImage> groups;
    lasts.clear();
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < count;) {
        IndexPageImage& group = groups.emplace_back();
        // One entry at least goes out behind the first group, and none is left without a group.
        const std::size_t end = groups.size() == 1 ? count - 2 : count;
        for (; i < end; ++i) {
            const bool enough = groups.size() == 1 && !ascending && !group.entries.empty() &&
                                bytes + image.entries[i].size() >= total / 2;
            if (enough) break;
            group.entries.push_back(image.entries[i]);
            if (group.EncodedBytes(format) > IndexRoom(format)) {
                group.entries.pop_back();
                break;
            }
            bytes += image.entries[i].size();
        }
        if (i == count) break;
        if (i + 1 == count) {
            --i;
            group.entries.pop_back();
        }
        group.tail = image.Child(i);
        Bytes& last = lasts.emplace_back(image.entries[i++]);
        last.resize(last.size() - kChildBytes);
    }
    groups.back().tail = image.tail;
    lasts.emplace_back();
    return groups;
}

}  // namespace jet
