#include "cfb/gsf_reader.h"

#include <gsf/gsf-infile-msole.h>
#include <gsf/gsf-infile.h>
#include <gsf/gsf-input-stdio.h>
#include <gsf/gsf-utils.h>

#include <memory>
#include <mutex>

namespace cfb_test {
namespace {

struct Unref {
    template <typename T>
    void operator()(T* object) const {
        g_object_unref(object);
    }
};
using Input = std::unique_ptr<GsfInput, Unref>;

GsfInfile* AsInfile(const Input& input) {
    return reinterpret_cast<GsfInfile*>(input.get());
}

std::vector<std::byte> AllBytes(const Input& stream) {
    std::vector<std::byte> bytes(static_cast<std::size_t>(gsf_input_size(stream.get())));
    if (!bytes.empty())
        gsf_input_read(stream.get(), bytes.size(), reinterpret_cast<guint8*>(bytes.data()));
    return bytes;
}

void Collect(const Input& storage, const std::string& prefix, Contents& contents) {
    const int count = gsf_infile_num_children(AsInfile(storage));
    for (int i = 0; i < count; ++i) {
        const Input child(gsf_infile_child_by_index(AsInfile(storage), i));
        if (!child) continue;
        const std::string name = prefix + gsf_infile_name_by_index(AsInfile(storage), i);
        if (gsf_infile_num_children(AsInfile(child)) < 0) {
            contents[name] = AllBytes(child);
            continue;
        }
        contents[name + "/"];
        Collect(child, name + "/", contents);
    }
}

}  // namespace

std::optional<Contents> ReadWithGsf(const std::filesystem::path& path) {
    static std::once_flag once;
    std::call_once(once, [] { gsf_init(); });
    const Input file(gsf_input_stdio_new(path.c_str(), nullptr));
    if (!file) return std::nullopt;
    const Input root(reinterpret_cast<GsfInput*>(gsf_infile_msole_new(file.get(), nullptr)));
    if (!root) return std::nullopt;
    Contents contents;
    Collect(root, "", contents);
    return contents;
}

}  // namespace cfb_test
