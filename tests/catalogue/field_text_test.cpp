#include "catalogue/field_text.h"

#include <gtest/gtest.h>

namespace catalogue {
namespace {

TEST(FieldTextTest, NullIsTheEmptyText) {
    EXPECT_EQ(FieldText(jet::Value::Null()), QString());
    EXPECT_EQ(FieldText(jet::Value::Boolean(true)), QStringLiteral("True"));
    EXPECT_EQ(FieldText(jet::Value::DateTime(46346)), QStringLiteral("11/20/2026"));
    EXPECT_EQ(FieldText(jet::Value::Long(-3)), QStringLiteral("-3"));
}

}  // namespace
}  // namespace catalogue
