// Whole scenes under random edits: the history and the files bring back the same bytes.
#include "tests/qel/sg/random_scene.h"
#include <gtest/gtest.h>

namespace sg::test {
namespace {

#ifdef TAVO_SHORT_PROPERTY_TESTS
constexpr int shortened = 10;
#elif defined(__SANITIZE_ADDRESS__)
constexpr int shortened = 10;
#else
constexpr int shortened = 1;
#endif

struct RandomDocuments : ::testing::TestWithParam<unsigned> {
    RandomDocuments() { std::printf("seed %u\n", GetParam()); }
    // Walks the history and saves at every `stride`th step.
    template<class Step> std::map<std::size_t, std::string> walk(std::size_t stride, Step step) {
        std::map<std::size_t, std::string> documents;
        do
            if (scene.getUndoCount() % stride == 0) documents[scene.getUndoCount()] = saved(scene);
        while (step());
        return documents;
    }
    Scene scene{L"random"};
};

TEST_P(RandomDocuments, AreTheSameBytesAfterUndoAndRedo) {
    std::string const empty = saved(scene);
    RandomScene edits(scene, GetParam());
    for (int i = 0; i < 100000 / shortened; ++i) edits.edit();
    edits.finish();
    while (scene.redo()) {}
    std::string const last = saved(scene);
    std::size_t const stride = 1 + scene.getUndoCount() / 60;
    auto const back = walk(stride, [&] { return scene.undo(); });
    ASSERT_EQ(saved(scene), empty);
    auto const forth = walk(stride, [&] { return scene.redo(); });
    ASSERT_EQ(saved(scene), last);
    ASSERT_EQ(back.size(), forth.size());
    for (auto const& [step, document] : back) ASSERT_EQ(document, forth.at(step)) << "at step " << step;
}

TEST_P(RandomDocuments, AreTheSameBytesAfterSavingAndLoading) {
    RandomScene edits(scene, GetParam() + 1, 60);
    Scene other;
    for (int i = 0; i < 6000 / shortened; ++i) {
        edits.edit();
        if (i % 50) continue;
        std::string const document = saved(scene);
        Loaded const result = load(other, document);
        ASSERT_TRUE(result.ok) << std::string(result.error.begin(), result.error.end()) << "\n" << document;
        ASSERT_EQ(saved(other), document);
        ASSERT_EQ(readings(other), readings(scene)) << document;
        ASSERT_EQ(saved(scene), document) << "reading changed it";
    }
}

// The document goes on from where it was loaded, and the history of it ends there.
TEST_P(RandomDocuments, CanBeEditedAfterLoading) {
    for (int round = 0; round < 6; ++round) {
        RandomScene edits(scene, GetParam() + 100 * unsigned(round));
        for (int i = 0; i < 1000 / shortened; ++i) edits.edit();
        std::string const document = saved(scene);
        ASSERT_TRUE(load(scene, document).ok);
        edits.finish();
        ASSERT_EQ(saved(scene), document);
        edits.findNodes();
        for (int i = 0; i < 500 / shortened; ++i) edits.edit();
        edits.finish();
        while (scene.undo()) {}
        ASSERT_EQ(saved(scene), document);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomDocuments, ::testing::Values(1u, 22u, 333u, 4444u, 55555u));

}  // namespace
}  // namespace sg::test
