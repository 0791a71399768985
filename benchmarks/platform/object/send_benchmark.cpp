// SPDX-License-Identifier: Apache-2.0
// Sends, performs by name, class tests and references against what C++ and other object systems do.
// "one" sends to one class, "mixed" to eight classes in random order.
#include "benchmarks/second_thread.h"
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/object/members.h>

#include <QMetaMethod>
#include <QObject>
#include <benchmark/benchmark.h>
#include <glib-object.h>

#include <array>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

namespace {

using namespace havrin;

class Base : public Object<Base, NSObject> {
 public:
  std::int64_t field = 3;
  std::int64_t read() { return field; }
  virtual std::int64_t readVirtually() { return field; }
  void set(std::int64_t value) { field = value; }
  virtual void setVirtually(std::int64_t value) { field = value; }
  using Members = List<Method<"read", &Base::read>, Property<"field", &Base::field>>;
};
template <int N>
class Derived : public Object<Derived<N>, Base> {
 public:
  std::int64_t readOwn() { return this->field + N; }
  std::int64_t readVirtually() override { return this->field + N; }
  using Members = List<Method<"read", &Derived::readOwn>>;
};
class Second : public Object<Second, Base> {};
class Third : public Object<Third, Second> {};
class Fourth : public Object<Fourth, Third> {};

template <int... N>
std::vector<Strong<Base>> mixedObjects(std::integer_sequence<int, N...>) {
  using Maker = Strong<Base> (*)();
  const Maker makers[] = {[]() -> Strong<Base> { return make<Derived<N>>(); }...};
  std::mt19937 random(7);
  std::vector<Strong<Base>> objects;
  for (int i = 0; i < 4096; ++i) objects.push_back(makers[random() % sizeof...(N)]());
  return objects;
}
std::vector<Strong<Base>> mixedObjects() { return mixedObjects(std::make_integer_sequence<int, 8>{}); }

class QtBase : public QObject {
  Q_OBJECT
 public:
  qint64 field = 3;
  Q_INVOKABLE qint64 read() { return field; }
};
class QtSecond : public QtBase {
  Q_OBJECT
};
class QtThird : public QtSecond {
  Q_OBJECT
};
class QtFourth : public QtThird {
  Q_OBJECT
};

struct PlainBase {
  virtual ~PlainBase() = default;
  virtual std::int64_t read() { return field; }
  std::int64_t field = 3;
};
struct PlainSecond : PlainBase {};
struct PlainThird : PlainSecond {};
struct PlainFourth : PlainThird {
  std::int64_t read() override { return field + 1; }
};

// Hides from the compiler which object a pointer points at.
template <class T>
T* opaque(T* pointer) {
  benchmark::DoNotOptimize(pointer);
  return pointer;
}

void sendOne(benchmark::State& state) {
  const auto object = make<Derived<1>>();
  Base* receiver = object;
  for (auto _ : state) benchmark::DoNotOptimize(send<"read">(*opaque(receiver)));
}
void virtualOne(benchmark::State& state) {
  const auto object = make<Derived<1>>();
  Base* receiver = object;
  for (auto _ : state) benchmark::DoNotOptimize(opaque(receiver)->readVirtually());
}
void functionOne(benchmark::State& state) {
  const auto object = make<Derived<1>>();
  const std::function<std::int64_t()> read = [raw = object.get()] { return raw->field; };
  for (auto _ : state) benchmark::DoNotOptimize((*opaque(&read))());
}

template <class Call>
void mixed(benchmark::State& state, Call call) {
  const auto objects = mixedObjects();
  std::size_t next = 0;
  for (auto _ : state) benchmark::DoNotOptimize(call(*objects[next++ & 4095]));
}
void sendMixed(benchmark::State& state) {
  mixed(state, [](Base& object) { return send<"read">(object); });
}
void virtualMixed(benchmark::State& state) {
  mixed(state, [](Base& object) { return object.readVirtually(); });
}

void setterMessage(benchmark::State& state) {
  const auto object = make<Derived<1>>();
  Base* receiver = object;
  for (auto _ : state) send<"setField:">(*opaque(receiver), 4);
}
void setterVirtual(benchmark::State& state) {
  const auto object = make<Derived<1>>();
  Base* receiver = object;
  for (auto _ : state) opaque(receiver)->setVirtually(4);
}

void performByName(benchmark::State& state) {
  const auto object = make<Derived<1>>();
  const Selector read = selector<"read">;
  for (auto _ : state) benchmark::DoNotOptimize(object->performSelector(read));
}
void mapByName(benchmark::State& state) {
  Base* object = make<Derived<1>>().detach();
  std::unordered_map<std::string, std::int64_t (*)(Base*)> methods;
  for (int i = 0; i < 50; ++i) methods["method" + std::to_string(i)] = [](Base* base) { return base->field; };
  methods["read"] = [](Base* base) { return base->field; };
  const std::string name = "read";
  for (auto _ : state) benchmark::DoNotOptimize(methods.find(*opaque(&name))->second(object));
  releaseObject(object);
}
void qtMetaMethod(benchmark::State& state) {
  QtFourth object;
  const QMetaObject* meta = object.metaObject();
  const QMetaMethod method = meta->method(meta->indexOfMethod("read()"));
  qint64 result = 0;
  for (auto _ : state) {
    method.invoke(&object, Qt::DirectConnection, Q_RETURN_ARG(qint64, result));
    benchmark::DoNotOptimize(result);
  }
}
void qtByName(benchmark::State& state) {
  QtFourth object;
  qint64 result = 0;
  for (auto _ : state) {
    QMetaObject::invokeMethod(&object, "read", Qt::DirectConnection, Q_RETURN_ARG(qint64, result));
    benchmark::DoNotOptimize(result);
  }
}
void gobjectSignal(benchmark::State& state) {
  GObject* object = G_OBJECT(g_object_new(g_type_from_name("HavrinBenchmarkObject"), nullptr));
  const guint signal = g_signal_lookup("read", G_OBJECT_TYPE(object));
  g_signal_connect(object, "read", G_CALLBACK(+[](GObject*, gpointer) {}), nullptr);
  for (auto _ : state) g_signal_emit(object, signal, 0);
  g_object_unref(object);
}

void kindOurs(benchmark::State& state) {
  const Strong<NSObject> object = make<Fourth>();
  for (auto _ : state) benchmark::DoNotOptimize(isKind<Base>(opaque(object.get())));
}
void kindDynamicCast(benchmark::State& state) {
  const std::unique_ptr<PlainBase> object = std::make_unique<PlainFourth>();
  for (auto _ : state) benchmark::DoNotOptimize(dynamic_cast<PlainSecond*>(opaque(object.get())));
}
void kindQt(benchmark::State& state) {
  QtFourth object;
  for (auto _ : state) benchmark::DoNotOptimize(qobject_cast<QtBase*>(opaque<QObject>(&object)));
}
void kindGType(benchmark::State& state) {
  GObject* object = G_OBJECT(g_object_new(g_type_from_name("HavrinBenchmarkFourth"), nullptr));
  const GType wanted = g_type_from_name("HavrinBenchmarkObject");
  for (auto _ : state) benchmark::DoNotOptimize(g_type_check_instance_is_a(&opaque(object)->g_type_instance, wanted));
  g_object_unref(object);
}

void strongCopy(benchmark::State& state) {
  const auto object = make<Base>();
  for (auto _ : state) {
    Strong<Base> copy = object;
    benchmark::DoNotOptimize(copy);
  }
}
void sharedCopy(benchmark::State& state) {
  const auto object = std::make_shared<PlainBase>();
  for (auto _ : state) {
    std::shared_ptr<PlainBase> copy = object;
    benchmark::DoNotOptimize(copy);
  }
}
void weakLock(benchmark::State& state) {
  const auto object = make<Base>();
  const Weak<Base> weak = object;
  for (auto _ : state) benchmark::DoNotOptimize(weak.lock());
}
void weakPointerLock(benchmark::State& state) {
  const auto object = std::make_shared<PlainBase>();
  const std::weak_ptr<PlainBase> weak = object;
  for (auto _ : state) benchmark::DoNotOptimize(weak.lock());
}
void weakLockShared(benchmark::State& state) {
  static const auto object = make<Base>();
  const Weak<Base> weak = object;
  for (auto _ : state) benchmark::DoNotOptimize(weak.lock());
}
void weakPointerLockShared(benchmark::State& state) {
  static const auto object = std::make_shared<PlainBase>();
  const std::weak_ptr<PlainBase> weak = object;
  for (auto _ : state) benchmark::DoNotOptimize(weak.lock());
}
void makeOurs(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(make<Base>());
}
void makeShared(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(std::make_shared<PlainBase>());
}

GType registerType(const char* name, GType parent) {
  const GTypeInfo info{sizeof(GObjectClass), nullptr, nullptr, nullptr, nullptr, nullptr,
                       sizeof(GObject),      0,       nullptr, nullptr};
  return g_type_register_static(parent, name, &info, GTypeFlags(0));
}

void registerAll() {
  const GType base = registerType("HavrinBenchmarkObject", G_TYPE_OBJECT);
  g_signal_new("read", base, G_SIGNAL_RUN_LAST, 0, nullptr, nullptr, nullptr, G_TYPE_NONE, 0);
  const GType second = registerType("HavrinBenchmarkSecond", base);
  registerType("HavrinBenchmarkFourth", registerType("HavrinBenchmarkThird", second));

  using Case = std::pair<const char*, void (*)(benchmark::State&)>;
  for (const auto& [name, body] : {Case{"send/one/read/ours", sendOne},
                                   Case{"send/one/read/virtual", virtualOne},
                                   Case{"send/one/read/function", functionOne},
                                   Case{"send/mixed/read/ours", sendMixed},
                                   Case{"send/mixed/read/virtual", virtualMixed},
                                   Case{"send/one/setter/ours", setterMessage},
                                   Case{"send/one/setter/virtual", setterVirtual},
                                   Case{"perform/by_selector/read/ours", performByName},
                                   Case{"perform/by_selector/read/unordered_map", mapByName},
                                   Case{"perform/by_selector/read/qt_meta", qtMetaMethod},
                                   Case{"perform/by_selector/read/qt_name", qtByName},
                                   Case{"perform/by_selector/read/gobject", gobjectSignal},
                                   Case{"is_kind/four_up/object/ours", kindOurs},
                                   Case{"is_kind/four_up/object/dynamic_cast", kindDynamicCast},
                                   Case{"is_kind/four_up/object/qt", kindQt},
                                   Case{"is_kind/four_up/object/gtype", kindGType},
                                   Case{"reference/copy/strong/ours", strongCopy},
                                   Case{"reference/copy/strong/shared_ptr", sharedCopy},
                                   Case{"reference/lock/weak/ours", weakLock},
                                   Case{"reference/lock/weak/weak_ptr", weakPointerLock},
                                   Case{"reference/make/object/ours", makeOurs},
                                   Case{"reference/make/object/make_shared", makeShared}}) {
    benchmark::RegisterBenchmark(name, body);
  }
  // All threads turn to one object.
  benchmark::RegisterBenchmark("many/weak/ours", weakLockShared)->ThreadRange(1, 8)->UseRealTime();
  benchmark::RegisterBenchmark("many/weak/weak_ptr", weakPointerLockShared)->ThreadRange(1, 8)->UseRealTime();
}

}  // namespace

int main(int argc, char** argv) {
  registerAll();
  return runBesideSecondThread(argc, argv);
}

#include "send_benchmark.moc"
