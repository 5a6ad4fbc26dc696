#include "zentavo/foundation/errors.h"

#include <gtest/gtest.h>

#include <string>

#include "zentavo/foundation/host.h"
#include "zentavo/platform/window_messages.h"

namespace zentavo {
namespace {

// The class and the text of what `raise` raises.
template <typename Raise>
std::string Raised(Raise raise) {
  try {
    raise();
  } catch (const EZentavoExtError& error) {
    return "ext " + std::to_string(error.ErrorId()) + " " + error.what();
  } catch (const EZentavoError& error) {
    return std::string("error ") + error.what();
  } catch (const EZentavoAbort& error) {
    return std::string("zentavo abort ") + error.what();
  } catch (const EAbort& error) {
    return std::string("abort ") + error.what();
  }
  return "nothing";
}

class Errors : public ::testing::Test {
 protected:
  void TearDown() override {
    FIsAutomation = false;
    XBatchExecHND = 0;
  }
};

TEST_F(Errors, NameTheComponentAndRecordTheText) {
  TComponent unnamed, named(u"Grid1");
  EXPECT_EQ(Raised([] { ZentavoError(u"x"); }), "error x");
  EXPECT_EQ(Raised([&] { ZentavoError(u"x", &unnamed); }), "error x");
  EXPECT_EQ(Raised([&] { ZentavoError(u"x", &named); }), "error Grid1: x");
  EXPECT_EQ(FLastErrorString, u"x");
  EXPECT_EQ(Raised([&] {
              ZentavoErrorFmt(u"%d of %s", {3, u"Ω"}, &named);
            }),
            "error Grid1: 3 of Ω");
  EXPECT_EQ(FLastErrorString, u"3 of Ω");
  EXPECT_EQ(Raised([] { ZentavoExtError(5, u"y"); }), "ext 5 y");
  EXPECT_EQ(FLastErrorString, u"y");
}

TEST_F(Errors, AutomationHostSeesTheSilentAbort) {
  FIsAutomation = true;
  EXPECT_EQ(Raised([] { ZentavoExtError(5, u"y"); }), "abort Operation aborted");
  EXPECT_EQ(FLastErrorString, u"y");
  EXPECT_EQ(Raised([] { ZentavoError(u"z"); }), "abort Operation aborted");
  EXPECT_EQ(Raised([] { ZentavoAbort(); }), "zentavo abort Operation aborted");
  EXPECT_EQ(FLastErrorString, u"z");  // an abort records nothing
}

TEST_F(Errors, BatchWindowGetsTheTextFirst) {
  String received;
  const platform::WindowHandle window = platform::OpenMessageWindow(
      [&received](std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam) {
        if (message == 1082 && wparam == 1) received = reinterpret_cast<const char16_t*>(lparam);
        return std::intptr_t{0};
      });
  ASSERT_NE(window, 0u);
  XBatchExecHND = window;
  EXPECT_EQ(Raised([] { ZentavoError(u"Λάθος"); }), "abort Operation aborted");
  platform::CloseMessageWindow(window);
  EXPECT_EQ(received, u"Λάθος");
  EXPECT_EQ(FLastErrorString, u"Λάθος");
}

}  // namespace
}  // namespace zentavo
