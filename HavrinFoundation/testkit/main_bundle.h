// SPDX-License-Identifier: Apache-2.0
// A main bundle that the test says. While a TestMainBundle lives, the main bundle of the process is a folder of the test's,
// or a bundle object of its own.
//
//   TestMainBundle main(folder);                      // folder holds an Info.plist
//   appVersionString(*NSBundle::mainBundle())         what that file says
//
// They nest. Left out: bundles other than the main one, which NSBundle makes of any folder.
#pragma once

#include <HavrinFoundation/platform/application/bundle.h>

#include <string_view>

namespace havrin {

class TestMainBundle {
 public:
  /// A new bundle for the folder at `path`, whose Info.plist is read anew.
  explicit TestMainBundle(std::string_view path) : TestMainBundle(make<NSBundle>(path)) {}
  explicit TestMainBundle(NSBundle* bundle) : before_(installMainBundle(bundle)) {}
  TestMainBundle(const TestMainBundle&) = delete;
  TestMainBundle& operator=(const TestMainBundle&) = delete;
  ~TestMainBundle() { installMainBundle(before_); }

 private:
  Strong<NSBundle> before_;
};

}  // namespace havrin
