// Where the content of an index page that does not fit, or that two pages are to share, is cut.
#pragma once

#include "jet/index_page_editor.h"

namespace jet {

// Groups of consecutive entries that each fit a page: the first group is filled when entries come
// in ascending order, otherwise the groups are about equal. Links and level are left open.
std::vector<IndexPageImage> SplitLeaf(const IndexPageImage& image, bool ascending,
                                      const Format& format);

// A node's two groups: the last entry of the first becomes its tail, and its key goes up, as
// lasts[0]. Requires: three entries or more.
std::vector<IndexPageImage> SplitNode(const IndexPageImage& image, bool ascending,
                                      std::vector<Bytes>& lasts);

}  // namespace jet
