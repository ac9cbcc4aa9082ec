// Handing a path over to the instance of the program that has an application folder open, for a
// second one that cannot have it, too. The first listens at a local socket of its own for each
// folder, in the user's folder for such things, which nobody else may enter. The second connects,
// sends
//   8 bytes   "tavolo1\n"
//   4 bytes   how many bytes follow, least significant first; at most kMaxPathBytes; 0: no path
//   n bytes   the path, UTF-16, least significant byte first
// and is answered 'y' when the path was taken, 'n' when it was not. Paths are texts as the
// catalogue stores them. Threads: the user-interface thread.
#pragma once

#include "base/status.h"

#include <QtCore/QString>

#include <functional>
#include <memory>

namespace platform {

// A path has at most 32767 UTF-16 units on the system that allows most.
inline constexpr int kMaxPathBytes = 65534;

// Listens as long as it lives.
class PathReceiver {
public:
    virtual ~PathReceiver() = default;
};

// Called with each path; only with an absolute one, without "." and "..", or with an empty one: the
// second start has nothing to give and wants the first to be seen. False: not now.
using TakePath = std::function<bool(const QString& path)>;

// Requires: `folder` exists, and this process has its catalogue. A socket that an instance has left
// behind which is no more is replaced. kBusy: another instance answers there. kIoError: the system
// refuses.
base::Result<std::unique_ptr<PathReceiver>> ReceivePaths(const QString& folder, TakePath take);

// Gives the absolute path, or an empty one, to the instance that listens for `folder`. Waits
// `timeout_ms` at most for each step. kNotFound: none listens; kBusy: it does not take the path;
// kIoError: it does not answer.
base::Status HandPathOver(const QString& folder, const QString& path, int timeout_ms);

}  // namespace platform
