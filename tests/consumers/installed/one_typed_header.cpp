// A header of typed forms, alone.
#include <HavrinFoundation/links/utm_parameters.h>

int main() {
  const auto link = havrin::URL::fromString("https://example.org/?utm_source=mail");
  const auto parameters = havrin::fromUrl<havrin::UTMParameters>(link);
  return parameters && parameters->source == "mail" ? 0 : 1;
}
