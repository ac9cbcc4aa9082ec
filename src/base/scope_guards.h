// ScopedFlag: a flag that is true while the guard lives and has its former value again afterwards,
// whichever way the block is left.
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
