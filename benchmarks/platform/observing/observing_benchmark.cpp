// SPDX-License-Identifier: Apache-2.0
// A change on its way to observers, against the signals of other systems. The property is an integer in all of them, set
// through its setter; observers count.
#include "benchmarks/second_thread.h"
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/observing/change_dictionary.h>
#include <HavrinFoundation/platform/observing/key_value_coding.h>
#include <HavrinFoundation/platform/observing/key_value_observing.h>

#include <QObject>
#include <QString>
#include <QVariantMap>
#include <benchmark/benchmark.h>
#include <boost/signals2.hpp>
#include <glib-object.h>
#include <sigc++/sigc++.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace havrin;

constexpr int kMany = 1000;
constexpr std::uint64_t kBoth = NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld;

class Model : public Object<Model, NSObject> {
  std::int64_t value_ = 0;
  Strong<Model> next_;

 public:
  using Members = List<Property<"value", &Model::value_>, Property<"next", &Model::next_>>;
};
class Watcher : public Object<Watcher, NSObject> {
 public:
  std::int64_t seen = 0;
  void observe(NSString*, NSObject*, NSDictionary*, void*) { ++seen; }
  using Members = List<Method<"observeValueForKeyPath:ofObject:change:context:", &Watcher::observe>>;
};

class QtModel : public QObject {
  Q_OBJECT
  Q_PROPERTY(qint64 value READ value WRITE setValue NOTIFY valueChanged)
 public:
  qint64 value() const { return value_; }
  void setValue(qint64 value) {
    value_ = value;
    Q_EMIT valueChanged(value);
  }
 Q_SIGNALS:
  void valueChanged(qint64 value);

 private:
  qint64 value_ = 0;
};
class QtWatcher : public QObject {
  Q_OBJECT
 public:
  qint64 seen = 0;
  void hear(qint64) { ++seen; }
};

struct SigcModel {
  std::int64_t value = 0;
  sigc::signal<void(std::int64_t)> changed;
  void set(std::int64_t next) {
    value = next;
    changed(next);
  }
};
struct SigcWatcher : sigc::trackable {
  std::int64_t seen = 0;
  void hear(std::int64_t) { ++seen; }
};

struct BoostModel {
  std::int64_t value = 0;
  boost::signals2::signal<void(std::int64_t)> changed;
  void set(std::int64_t next) {
    value = next;
    changed(next);
  }
};

// A GObject class with one integer property.
struct GModel {
  GObject parent;
  gint64 value;
};
struct GModelClass {
  GObjectClass parent;
};
GParamSpec* modelValue = nullptr;
G_DEFINE_TYPE(GModel, g_model, G_TYPE_OBJECT)
void g_model_init(GModel*) {}
void setModelProperty(GObject* object, guint, const GValue* value, GParamSpec*) {
  reinterpret_cast<GModel*>(object)->value = g_value_get_int64(value);
}
void getModelProperty(GObject* object, guint, GValue* value, GParamSpec*) {
  g_value_set_int64(value, reinterpret_cast<GModel*>(object)->value);
}
void g_model_class_init(GModelClass* cls) {
  auto* object = reinterpret_cast<GObjectClass*>(cls);
  object->set_property = setModelProperty;
  object->get_property = getModelProperty;
  modelValue = g_param_spec_int64("value", nullptr, nullptr, G_MININT64, G_MAXINT64, 0, G_PARAM_READWRITE);
  g_object_class_install_property(object, 1, modelValue);
}
void hearModel(GObject*, GParamSpec*, gpointer seen) { ++*static_cast<gint64*>(seen); }

void check(bool holds) {
  if (!holds) std::abort();
}

Strong<Model> observedModel(const std::vector<Strong<Watcher>>& watchers, std::uint64_t options) {
  auto model = make<Model>();
  for (const auto& watcher : watchers) {
    send<"addObserver:forKeyPath:options:context:">(model, watcher, keyPath<Model, "value">, options, nullptr);
  }
  return model;
}
std::vector<Strong<Watcher>> watchers(int count, bool oneParty) {
  std::vector<Strong<Watcher>> all;
  for (int i = 0; i < count; ++i) all.push_back(oneParty && i ? all.front() : make<Watcher>());
  return all;
}

void runOurs(benchmark::State& state, int count, bool oneParty, std::uint64_t options) {
  const auto parties = watchers(count, oneParty);
  const auto model = observedModel(parties, options);
  std::int64_t value = 0;
  for (auto _ : state) send<"setValue:">(*model, ++value);
  check(parties.back()->seen == value * (oneParty ? count : 1));
}
void runQt(benchmark::State& state, int count, bool oneParty) {
  QtModel model;
  std::vector<std::unique_ptr<QtWatcher>> parties;
  for (int i = 0; i < count; ++i) {
    if (!oneParty || i == 0) parties.push_back(std::make_unique<QtWatcher>());
    QObject::connect(&model, &QtModel::valueChanged, parties.back().get(), &QtWatcher::hear);
  }
  qint64 value = 0;
  for (auto _ : state) model.setValue(++value);
  check(parties.back()->seen == value * (oneParty ? count : 1));
}
void runSigc(benchmark::State& state, int count) {
  SigcModel model;
  SigcWatcher watcher;
  for (int i = 0; i < count; ++i) model.changed.connect(sigc::mem_fun(watcher, &SigcWatcher::hear));
  std::int64_t value = 0;
  for (auto _ : state) model.set(++value);
  check(watcher.seen == value * count);
}
void runBoost(benchmark::State& state, int count) {
  BoostModel model;
  std::int64_t seen = 0;
  for (int i = 0; i < count; ++i) model.changed.connect([&seen](std::int64_t) { ++seen; });
  std::int64_t value = 0;
  for (auto _ : state) model.set(++value);
  check(seen == value * count);
}
void runGObject(benchmark::State& state, int count) {
  auto* model = static_cast<GModel*>(g_object_new(g_model_get_type(), nullptr));
  gint64 seen = 0;
  for (int i = 0; i < count; ++i) g_signal_connect(model, "notify::value", G_CALLBACK(hearModel), &seen);
  gint64 value = 0;
  for (auto _ : state) {
    model->value = ++value;
    g_object_notify_by_pspec(&model->parent, modelValue);
  }
  check(seen == value * count);
  g_object_unref(model);
}

// Values that travel boxed: the old and the new one with the change, or a property set by its name.
void qtSetProperty(benchmark::State& state) {
  QtModel model;
  QtWatcher watcher;
  QObject::connect(&model, &QtModel::valueChanged, &watcher, &QtWatcher::hear);
  qint64 value = 0;
  for (auto _ : state) model.setProperty("value", ++value);
  check(watcher.seen == value);
}
void gobjectSet(benchmark::State& state) {
  auto* model = static_cast<GModel*>(g_object_new(g_model_get_type(), nullptr));
  gint64 seen = 0;
  g_signal_connect(model, "notify::value", G_CALLBACK(hearModel), &seen);
  gint64 value = 0;
  for (auto _ : state) g_object_set(model, "value", ++value, nullptr);
  check(seen == value);
  g_object_unref(model);
}
void setByKey(benchmark::State& state) {
  const auto parties = watchers(1, true);
  const auto model = observedModel(parties, kBoth);
  const auto key = makeString("value");
  const auto number = makeNumber(7);
  for (auto _ : state) send<"setValue:forKey:">(model, number, key);
  check(parties.back()->seen != 0);
}
void throughAPath(benchmark::State& state) {
  const auto root = make<Model>();
  const auto end = make<Model>();
  const auto watcher = make<Watcher>();
  send<"setNext:">(root, end);
  send<"addObserver:forKeyPath:options:context:">(root, watcher, keyPath<Model, "next.value">, 0, nullptr);
  std::int64_t value = 0;
  for (auto _ : state) send<"setValue:">(*end, ++value);
  check(watcher->seen == value);
}

void dictionaryOurs(benchmark::State& state) {
  const auto before = makeString("before");
  const auto after = makeString("after");
  const auto path = makeString("title");
  static constinit const LazyString key{"keyPath"};
  for (auto _ : state) {
    const auto change = make<NSKeyValueChangeDictionary>(NSKeyValueChangeDictionary::Values{
        .kind = NSKeyValueChange::setting, .prior = false, .newValue = after, .oldValue = before, .indexes = nullptr});
    benchmark::DoNotOptimize(change->adding(key, path));
  }
}
void dictionaryQt(benchmark::State& state) {
  const QString keys[] = {"kind", "new", "old", "keyPath"};
  const QString before = "before";
  const QString after = "after";
  const QString path = "title";
  for (auto _ : state) {
    QVariantMap change;
    change.insert(keys[0], 1);
    change.insert(keys[1], after);
    change.insert(keys[2], before);
    change.insert(keys[3], path);
    benchmark::DoNotOptimize(change);
  }
}
void dictionaryMap(benchmark::State& state) {
  const auto before = std::make_shared<std::string>("before");
  const auto after = std::make_shared<std::string>("after");
  const auto path = std::make_shared<std::string>("title");
  for (auto _ : state) {
    std::map<std::string, std::shared_ptr<void>> change;
    change.emplace("kind", std::make_shared<int>(1));
    change.emplace("new", after);
    change.emplace("old", before);
    change.emplace("keyPath", path);
    benchmark::DoNotOptimize(change);
  }
}

void registerOurs(benchmark::State& state) {
  const auto model = make<Model>();
  const auto watcher = make<Watcher>();
  for (auto _ : state) {
    send<"addObserver:forKeyPath:options:context:">(model, watcher, keyPath<Model, "value">, kBoth, nullptr);
    send<"removeObserver:forKeyPath:context:">(model, watcher, keyPath<Model, "value">, nullptr);
  }
}
void registerAmongMany(benchmark::State& state) {
  std::vector<Strong<Model>> others;
  const auto watcher = make<Watcher>();
  for (int i = 0; i < 20'000; ++i) others.push_back(observedModel({watcher}, kBoth));
  registerOurs(state);
}
void registerQt(benchmark::State& state) {
  QtModel model;
  QtWatcher watcher;
  for (auto _ : state) {
    const auto connection = QObject::connect(&model, &QtModel::valueChanged, &watcher, &QtWatcher::hear);
    QObject::disconnect(connection);
  }
}

void readByKey(benchmark::State& state) {
  const auto model = make<Model>();
  const auto key = makeString("value");
  for (auto _ : state) benchmark::DoNotOptimize(send<"valueForKey:">(model, key));
}
void readQt(benchmark::State& state) {
  QtModel model;
  for (auto _ : state) benchmark::DoNotOptimize(model.property("value"));
}

void registerAll() {
  const auto add = [](const char* name, auto body) { benchmark::RegisterBenchmark(name, body); };
  using State = benchmark::State;
  add("change/one/1/ours", [](State& state) { runOurs(state, 1, true, 0); });
  add("change/one/1/qt", [](State& state) { runQt(state, 1, true); });
  add("change/one/1/sigc", [](State& state) { runSigc(state, 1); });
  add("change/one/1/signals2", [](State& state) { runBoost(state, 1); });
  add("change/one/1/gobject", [](State& state) { runGObject(state, 1); });
  add("change/one_party/1000/ours", [](State& state) { runOurs(state, kMany, true, 0); });
  add("change/one_party/1000/qt", [](State& state) { runQt(state, kMany, true); });
  add("change/one_party/1000/sigc", [](State& state) { runSigc(state, kMany); });
  add("change/one_party/1000/signals2", [](State& state) { runBoost(state, kMany); });
  add("change/one_party/1000/gobject", [](State& state) { runGObject(state, kMany); });
  add("change/parties/1000/ours", [](State& state) { runOurs(state, kMany, false, 0); });
  add("change/parties/1000/qt", [](State& state) { runQt(state, kMany, false); });
  for (int count = 1; count <= 100'000; count *= 10) {
    const std::string label = "growth/change/" + std::to_string(count);
    add((label + "/ours").c_str(), [count](State& state) { runOurs(state, count, true, 0); });
    add((label + "/qt").c_str(), [count](State& state) { runQt(state, count, true); });
    add((label + "/signals2").c_str(), [count](State& state) { runBoost(state, count); });
  }
  add("change/values/1/ours", [](State& state) { runOurs(state, 1, true, kBoth); });
  add("change/values/1/qt_set_property", qtSetProperty);
  add("change/values/1/gobject_set", gobjectSet);
  add("change/by_key/1/ours", setByKey);
  add("change/by_key/1/qt_set_property", qtSetProperty);
  add("change/path/2/ours", throughAPath);
  add("change_dictionary/build/4/ours", dictionaryOurs);
  add("change_dictionary/build/4/qt", dictionaryQt);
  add("change_dictionary/build/4/map", dictionaryMap);
  // Each thread changes an object of its own.
  const auto addThreads = [](const char* name, auto body) {
    benchmark::RegisterBenchmark(name, body)->ThreadRange(1, 8)->UseRealTime();
  };
  addThreads("many/change/ours", [](State& state) { runOurs(state, 1, true, 0); });
  addThreads("many/change/qt", [](State& state) { runQt(state, 1, true); });
  addThreads("many/change/signals2", [](State& state) { runBoost(state, 1); });
  add("register/and_remove/1/ours", registerOurs);
  add("register/and_remove/20000/ours", registerAmongMany);
  add("register/and_remove/1/qt", registerQt);
  add("read_by_key/integer/1/ours", readByKey);
  add("read_by_key/integer/1/qt", readQt);
}

}  // namespace

int main(int argc, char** argv) {
  registerAll();
  return runBesideSecondThread(argc, argv);
}

#include "observing_benchmark.moc"
