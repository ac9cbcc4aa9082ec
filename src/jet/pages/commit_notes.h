// What commits carry besides their pages: notes, bytes of which the page store knows nothing. A
// note is written to the journal together with its transaction, so that both are there afterwards
// or neither; a checkpoint hands it on before the journal is emptied. Who takes notes is set
// through PageStoreOptions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace jet {

struct CommitNote {
    // Which note it is, as it may be handed on twice when a process dies: the journal (a random
    // number) and the place there, which grows from note to note.
    std::uint64_t journal = 0;
    std::uint64_t offset = 0;
    std::vector<std::byte> bytes;
    bool operator==(const CommitNote&) const = default;
};

// Takes notes on. Nothing here can fail a commit or a checkpoint: who cannot keep a note must know
// what to say of that. Threads: Keep comes from the store's flusher or from its own thread, never
// twice at a time.
class CommitNotes {
public:
    virtual ~CommitNotes() = default;

    // The database is being opened for writing. `marks`: those that its file can carry now; each
    // was given to it by an earlier Keep, or by nobody who knew of these notes (0: by nobody at
    // all).
    virtual void Bind(std::vector<std::uint64_t> marks) = 0;
    // The notes since the last call, in the order of their commits, and the mark that the database
    // file is about to be given. The journal still has the notes; when this has returned it may be
    // emptied.
    virtual void Keep(std::vector<CommitNote> notes, std::uint64_t mark) = 0;
};

}  // namespace jet
