// Where the content of an index page that does not fit, or of two pages, is divided.
#pragma once

#include "jet/index/index_page_editor.h"

namespace jet {

// Groups of consecutive entries that each fit a page: the first group is filled when entries come
// in ascending order, otherwise the groups are about equal. Links and level are left open.
std::vector<IndexPageImage> SplitLeaf(const IndexPageImage& image, bool ascending,
                                      const Format& format);

// The same for a node. Between two groups an entry goes out: its child becomes the tail of the
// first, and its key goes up, as an element of `lasts`; the last element is empty. Requires: three
// entries or more, of which any two fit a page.
std::vector<IndexPageImage> SplitNode(const IndexPageImage& image, bool ascending,
                                      const Format& format, std::vector<Bytes>& lasts);

}  // namespace jet
