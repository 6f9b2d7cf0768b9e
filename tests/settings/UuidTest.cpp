#include "settings/records/Uuid.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

TEST(Uuid, anyOtherTextIsRefused) {
    for (const char *text :
         {"", "00112233445566778899AABBCCDDEEFF", "{00112233-4455-6677-8899-AABBCCDDEEFF}",
          "00112233-4455-6677-8899-AABBCCDDEEF", "00112233-4455-6677-8899-AABBCCDDEEFF0",
          "00112233-4455-6677-8899-AABBCCDDEEFG", "001122334-455-6677-8899-AABBCCDDEEFF",
          " 0112233-4455-6677-8899-AABBCCDDEEFF"})
        EXPECT_FALSE(Uuid::fromText(text)) << text;
}

TEST(Uuid, randomOnesDifferAndReadBackInEitherCase) {
    const Uuid uuid = Uuid::random();
    EXPECT_NE(uuid, Uuid::random());
    EXPECT_EQ(uuid.text()[14], '4');
    EXPECT_EQ(Uuid::fromText(uuid.text()), uuid);
    EXPECT_EQ(Uuid::fromText("00112233-4455-6677-8899-aAbBcCdDeEfF")->text(),
              "00112233-4455-6677-8899-AABBCCDDEEFF");
}

} // namespace
} // namespace quorbel
