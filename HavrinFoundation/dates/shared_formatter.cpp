// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/dates/shared_formatter.h>

#include <HavrinFoundation/platform/object/string.h>

namespace havrin {
namespace {

Strong<NSDateFormatter> makeFormatter() {
  Strong<NSDateFormatter> formatter = make<NSDateFormatter>();
  formatter->setLocale(Locale::posix());
  formatter->setCalendar(Calendar(CalendarIdentifier::gregorian, TimeZone::gmt()));
  formatter->setDateFormat(makeString("EEE',' dd MMM yyyy HH':'mm':'ss z"));
  return formatter;
}

}  // namespace

template <>
Strong<NSDateFormatter> rfc1123<NSDateFormatter>() {
  static NSDateFormatter* const kFormatter = makeFormatter().detach();
  return Strong<NSDateFormatter>(kFormatter);
}

}  // namespace havrin
