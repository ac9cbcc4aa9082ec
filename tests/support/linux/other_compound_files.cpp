#include "support/other_compound_files.h"

#include "base/unicode.h"

#include <gsf/gsf-infile-msole.h>
#include <gsf/gsf-infile.h>
#include <gsf/gsf-input-stdio.h>
#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-output-stdio.h>
#include <gsf/gsf-utils.h>

#include <mutex>

namespace test_support {
namespace {

struct Unref {
    template <typename T>
    void operator()(T* object) const {
        g_object_unref(object);
    }
};
using Input = std::unique_ptr<GsfInput, Unref>;
using Output = std::unique_ptr<GsfOutput, Unref>;

void StartLibrary() {
    static std::once_flag once;
    std::call_once(once, [] { gsf_init(); });
}

base::Status Failed(const std::string& what) {
    return {base::StatusCode::kIoError, "libgsf: " + what};
}

GsfOutfile* AsOutfile(const Output& output) {
    return reinterpret_cast<GsfOutfile*>(output.get());
}

bool WriteMembers(GsfOutfile* parent, const CompoundNode& storage);

bool WriteNode(GsfOutfile* parent, const std::u16string& name, const CompoundNode& node) {
    const std::string utf8 = base::ToUtf8(name);
    const Output child(gsf_outfile_new_child(parent, utf8.c_str(), node.is_storage));
    if (!child) return false;
    bool ok = true;
    if (node.is_storage)
        ok = WriteMembers(AsOutfile(child), node);
    else if (node.bytes != nullptr && !node.bytes->empty())
        ok = gsf_output_write(child.get(), node.bytes->size(),
                              reinterpret_cast<const guint8*>(node.bytes->data()));
    return gsf_output_close(child.get()) && ok;
}

bool WriteMembers(GsfOutfile* parent, const CompoundNode& storage) {
    bool ok = true;
    for (const auto& [name, node] : storage.members)
        ok = WriteNode(parent, name, *node) && ok;
    return ok;
}

GsfInfile* AsInfile(const Input& input) {
    return reinterpret_cast<GsfInfile*>(input.get());
}

std::vector<std::byte> AllBytes(const Input& stream) {
    std::vector<std::byte> bytes(static_cast<std::size_t>(gsf_input_size(stream.get())));
    if (!bytes.empty())
        gsf_input_read(stream.get(), bytes.size(), reinterpret_cast<guint8*>(bytes.data()));
    return bytes;
}

void Collect(const Input& storage, const std::string& prefix, CompoundContents& contents) {
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

base::Status WriteCompoundFile(const std::filesystem::path& path, const CompoundNode& root,
                               unsigned sector_size) {
    StartLibrary();
    const Output sink(gsf_output_stdio_new(path.c_str(), nullptr));
    if (!sink) return Failed("cannot create " + path.string());
    const Output file(
        reinterpret_cast<GsfOutput*>(gsf_outfile_msole_new_full(sink.get(), sector_size, 64)));
    if (!file) return Failed("refuses the sector size");
    const bool written = WriteMembers(AsOutfile(file), root);
    const bool closed = gsf_output_close(file.get());
    if (!written || !closed) return Failed("cannot write " + path.string());
    return base::Status::Ok();
}

std::optional<CompoundContents> ReadCompoundFile(const std::filesystem::path& path) {
    StartLibrary();
    const Input file(gsf_input_stdio_new(path.c_str(), nullptr));
    if (!file) return std::nullopt;
    const Input root(reinterpret_cast<GsfInput*>(gsf_infile_msole_new(file.get(), nullptr)));
    if (!root) return std::nullopt;
    CompoundContents contents;
    Collect(root, "", contents);
    return contents;
}

}  // namespace test_support
