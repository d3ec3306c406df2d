// A rate that cannot be stored is not half stored.
#include "store/typed.h"
#include "support/books.h"
#include "vlfn98/currency.h"

namespace test {
namespace {

using namespace vldb98;

TEST_F(Books, ExchangeRateIsNotHalfStored) {
  Faults faults;
  auto store = session();
  uint8_t found = 0;
  ASSERT_TRUE(store->SetzeFista(1, found) && found);
  const std::string before = dump(*store, 1, {kKurse});
  const auto last = sweep(
      faults, [] {},
      [&] {
        try {
          vlfn98::storeRate(*store, "GBP", "460315", {1'154'321, 1});
          return true;
        } catch (const StoreFailed &) {
          return false;
        }
      },
      [&](bool done) {
        EXPECT_FALSE(done);
        EXPECT_EQ(dump(*store, 1, {kKurse}), before);
      });
  EXPECT_TRUE(last.second);
}

} // namespace
} // namespace test
