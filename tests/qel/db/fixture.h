// A database with short words for what the tests do all the time.
#pragma once
#include "tests/qel/db/any_value.h"
#include "tests/qel/db/test_nodes.h"
#include <functional>
#include <gtest/gtest.h>

namespace db::test {

struct RecordingLogger : Qelutils::BasicLogger {
    void Log(Level level, char const* text) override { Log(level, std::wstring(text, text + std::strlen(text))); }
    void Log(Level level, wchar_t const* text) override { Log(level, std::wstring(text)); }
    void Log(Level level, std::wstring const& text) override { lines.emplace_back(level, text); }
    std::vector<std::pair<int, std::wstring>> lines;
};

// Notes what it is told and does what the test wants then.
struct Watcher : DatabaseObserver {
    void onDatabaseChanged(ChangeSet const& set, bool isTransient) override {
        transient.push_back(isTransient);
        attributes = set.ChangedAttributes();
        removedAttributes = set.RemovedAttributes();
        added = set.AddedNodes();
        removed = set.RemovedNodes();
        renamed = set.RenamedNodes();
        reparented = set.ReparentedNodes();
        if (then) then(set);
    }
    void postDatabaseChanged(ChangeSet const&, bool) override { ++after; }
    std::size_t told() const { return transient.size(); }

    std::vector<bool> transient;
    std::vector<Attribute*> attributes, removedAttributes;
    std::vector<Node*> added, removed, renamed, reparented;
    int after = 0;
    std::function<void(ChangeSet const&)> then;
};

struct Fixture : ::testing::Test {
    Fixture() {
        database.setLogger(&log);
        database.addObserver(&watcher);
    }
    Node* make(wchar_t const* name) { return database.createNode(allDef(), name); }
    Node* makeStep(wchar_t const* name) {
        Node* n = nullptr;
        step([&] { n = make(name); });
        return n;
    }
    template<class F> void step(F const& edit, wchar_t const* label = L"step") {
        ChangeBlock const block(&database, label);
        edit();
    }
    template<class F> void gesture(F const& edit) {
        ChangeBlock const block(&database, L"", ChangeMode::Transient);
        edit();
    }
    static FloatAttribute& number(Node* n) { return get<FloatAttribute>(n, L"Float"); }
    static FloatArrayAttribute& numbers(Node* n) { return get<FloatArrayAttribute>(n, L"FloatArray"); }
    static AttributeArray& elements(Node* n) { return get<AttributeArray>(n, L"Elements"); }

    RecordingLogger log;
    Watcher watcher;
    Database database;
};

}  // namespace db::test
