// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/object/loaded_images.h>

#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/base/unfair_lock_word.h>
#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/class.h>
#include <HavrinFoundation/platform/object/suggestion.h>

#include <string>
#include <utility>
#include <vector>

namespace havrin {
inline namespace platform {
namespace {

struct Unanswered {
  const ClassObject* cls;
  std::string selector;
};

// Never destroyed. The images are copies: a Loader may be given a temporary one.
struct Images {
  os_unfair_lock lock;
  std::vector<Image> loaded HAVRIN_THREAD_SAFETY(guarded_by(lock));
  std::vector<Unanswered> unanswered HAVRIN_THREAD_SAFETY(guarded_by(lock));

  static Images& shared() {
    static Images* const kImages = new Images;
    return *kImages;
  }
};

// The name as the program writes it: "NSArray(Blocks)".
std::string nameOf(const Category& category) {
  return std::string(category.cls()->name()).append("(").append(category.name).append(")");
}

// Calls `body` with every method that the image adds: the category, the class or metaclass, and the selector.
template <class Body>
void eachMethod(const Image& image, Body&& body) {
  for (const Category* category : image.categories) {
    const ClassObject* cls = category->cls();
    for (const MethodRow& row : category->rows) body(*category, *cls, std::string_view(row.selector->name));
    for (const MethodRow& row : category->classRows) {
      body(*category, *dispatchClass(cls), std::string_view(row.selector->name));
    }
  }
}

// Takes what the image answers out of `unanswered`.
void diagnoseImage(const Image& image, const std::vector<Image>& earlier, std::vector<Unanswered>& unanswered) {
  eachMethod(image, [&](const Category& category, const ClassObject& cls, std::string_view selector) {
    std::erase_if(unanswered, [&](const Unanswered& sent) {
      if (sent.selector != selector || !sent.cls->inheritsFrom(&cls)) return false;
      report(Finding::lateImage, {methodName(*sent.cls, selector), image.name});
      return true;
    });
    for (const Image& other : earlier) {
      if (other.categories.data() == image.categories.data()) continue;  // the same image once more
      eachMethod(other, [&](const Category& before, const ClassObject& sameClass, std::string_view sameSelector) {
        if (&sameClass != &cls || sameSelector != selector) return;
        report(Finding::twoImages,
               {methodName(cls, selector), other.name, nameOf(before), image.name, nameOf(category)});
      });
    }
  });
}

void describeImages(std::string& text) {
  Images& images = Images::shared();
  std::vector<Image> loaded;
  {
    const UnfairLockGuard guard(images.lock);
    loaded = images.loaded;
  }
  for (const Image& image : loaded) {
    text.append("  ").append(image.name);
    const char* before = ": ";
    for (const Category* category : image.categories)
      text.append(std::exchange(before, ", ")).append(nameOf(*category));
    text += "\n";
  }
}

}  // namespace

extern const DiagnosticsSection kImagesSection;
constinit const DiagnosticsSection kImagesSection{"images", describeImages};

void noteImage(const Image& image) {
  Images& images = Images::shared();
  std::vector<Image> earlier;
  std::vector<Unanswered> unanswered;
  {
    const UnfairLockGuard guard(images.lock);
    if (diagnosing()) {
      earlier = images.loaded;
      unanswered.swap(images.unanswered);
    }
    images.loaded.push_back(image);
  }
  if (!diagnosing()) return;
  diagnoseImage(image, earlier, unanswered);
  const UnfairLockGuard guard(images.lock);
  images.unanswered.insert(images.unanswered.end(), unanswered.begin(), unanswered.end());
}

void diagnoseUnanswered(const ClassObject& cls, std::string_view selector) {
  Images& images = Images::shared();
  std::string names;
  {
    const UnfairLockGuard guard(images.lock);
    for (const Image& image : images.loaded) names.append(names.empty() ? "" : ", ").append(image.name);
    images.unanswered.push_back({cls.shown(), std::string(selector)});
  }
  report(Finding::unansweredMessage, {methodName(cls, selector), names, suggestion(cls, selector)});
}

}  // namespace platform
}  // namespace havrin
