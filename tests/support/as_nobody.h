// AsNobody: for tests of what a user may not do. Where the tests run as root, who may do
// everything, this process is the user nobody as long as the object lives.
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

namespace test_support {

class [[nodiscard]] AsNobody {
public:
    AsNobody() { EXPECT_TRUE(!was_root_ || seteuid(kNobody) == 0); }
    ~AsNobody() { EXPECT_TRUE(!was_root_ || seteuid(0) == 0); }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

private:
    static constexpr uid_t kNobody = 65534;
    bool was_root_ = geteuid() == 0;
};

}  // namespace test_support
