// ScopedFlag: sets a flag while the guard lives and restores its former value, whichever way the
// block is left.
#pragma once

namespace base {

class [[nodiscard]] ScopedFlag {
public:
    // `flag` must outlive the guard.
    explicit ScopedFlag(bool& flag) : flag_(flag), before_(flag) { flag_ = true; }
    ~ScopedFlag() { flag_ = before_; }
    ScopedFlag(const ScopedFlag&) = delete;
    ScopedFlag& operator=(const ScopedFlag&) = delete;

private:
    bool& flag_;
    bool before_;
};

}  // namespace base
