#include "thumbnails/thumbnail_loader.h"

#include "thumbnails/pictures_of_tests.h"

#include <QtTest/QTest>

#include <algorithm>
#include <condition_variable>

namespace thumbnails {
namespace {

constexpr QSize kBox(40, 30);
constexpr qsizetype kBytesOfOne = qsizetype{40} * 30 * 4;

TablePicture Picture(const char* name) {
    return {QString::fromLatin1(name), {}};
}

std::vector<ThumbnailLoader::Wish> Wishes(std::initializer_list<const char*> names,
                                          QSize box = kBox) {
    std::vector<ThumbnailLoader::Wish> wishes;
    for (const char* name : names)
        wishes.push_back({Picture(name), box});
    return wishes;
}

// Makes pictures in the order in which it is asked, while its door is open.
class Studio {
public:
    base::Result<QImage> Make(const TablePicture& picture, QSize box) {
        std::unique_lock lock(mutex_);
        begun_.push_back(picture.image_file.toStdString());
        most_at_once_ = std::max(most_at_once_, ++at_work_);
        changed_.notify_all();
        changed_.wait(lock, [this] { return is_open_; });
        --at_work_;
        if (picture.image_file == u"bad")
            return base::Status{base::StatusCode::kCorruption, "bad: it is damaged"};
        if (picture.image_file == u"none")
            return base::Status{base::StatusCode::kNotFound, "there is none"};
        return Painted(box.width(), box.height());
    }
    void Open() {
        const std::lock_guard lock(mutex_);
        is_open_ = true;
        changed_.notify_all();
    }
    void Close() {
        const std::lock_guard lock(mutex_);
        is_open_ = false;
    }
    bool WaitUntilBegun(std::size_t count) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(20),
                                 [&] { return begun_.size() >= count; });
    }
    std::vector<std::string> begun() {
        const std::lock_guard lock(mutex_);
        return begun_;
    }
    int most_at_once() {
        const std::lock_guard lock(mutex_);
        return most_at_once_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> begun_;
    int at_work_ = 0;
    int most_at_once_ = 0;
    bool is_open_ = true;
};

class ThumbnailLoaderTest : public testing::Test {
protected:
    void Make(ThumbnailLoader::Limits limits = {}) {
        loader = std::make_unique<ThumbnailLoader>(
            [this](const TablePicture& picture, QSize box) { return studio.Make(picture, box); },
            limits);
        QObject::connect(loader.get(), &ThumbnailLoader::Arrived, [this] { ++arrivals; });
    }
    bool WaitFor(const char* name) {
        return QTest::qWaitFor([&] { return loader->Find(Picture(name)) != nullptr; }, 20'000);
    }
    bool Has(const char* name) { return loader->Find(Picture(name)) != nullptr; }
    ~ThumbnailLoaderTest() override { studio.Open(); }

    Studio studio;
    std::unique_ptr<ThumbnailLoader> loader;
    int arrivals = 0;
};

TEST_F(ThumbnailLoaderTest, WhatIsWantedArrives) {
    Make();
    EXPECT_FALSE(Has("a"));
    loader->Want(Wishes({"a"}));
    ASSERT_TRUE(WaitFor("a"));
    EXPECT_EQ(loader->Find(Picture("a"))->image.size(), kBox);
    EXPECT_TRUE(loader->Find(Picture("a"))->failure.isEmpty());
    EXPECT_EQ(arrivals, 1);
}

TEST_F(ThumbnailLoaderTest, WhatIsKnownIsNotMadeAgain) {
    Make();
    loader->Want(Wishes({"a"}));
    ASSERT_TRUE(WaitFor("a"));
    loader->Want(Wishes({"a", "b"}));
    ASSERT_TRUE(WaitFor("b"));
    EXPECT_EQ(studio.begun(), (std::vector<std::string>{"a", "b"}));
}

TEST_F(ThumbnailLoaderTest, TheMostWantedIsMadeFirst) {
    Make({.workers = 1});
    studio.Close();
    loader->Want(Wishes({"first"}));
    ASSERT_TRUE(studio.WaitUntilBegun(1));
    loader->Want(Wishes({"a", "b", "c"}));
    studio.Open();
    ASSERT_TRUE(studio.WaitUntilBegun(4));
    EXPECT_EQ(studio.begun(), (std::vector<std::string>{"first", "a", "b", "c"}));
}

TEST_F(ThumbnailLoaderTest, WhatScrolledAwayIsNeverMade) {
    Make({.workers = 1});
    studio.Close();
    loader->Want(Wishes({"first", "gone"}));
    ASSERT_TRUE(studio.WaitUntilBegun(1));
    loader->Want(Wishes({"new"}));
    studio.Open();
    ASSERT_TRUE(WaitFor("new"));
    EXPECT_EQ(studio.begun(), (std::vector<std::string>{"first", "new"}));
    EXPECT_TRUE(Has("first")) << "it was at work and is kept";
}

TEST_F(ThumbnailLoaderTest, WhatIsAtWorkIsNotMadeTwice) {
    Make();
    studio.Close();
    loader->Want(Wishes({"a", "b"}));
    ASSERT_TRUE(studio.WaitUntilBegun(2));
    loader->Want(Wishes({"a", "b"}));
    studio.Open();
    ASSERT_TRUE(WaitFor("a"));
    ASSERT_TRUE(WaitFor("b"));
    EXPECT_EQ(studio.begun().size(), 2U);
}

TEST_F(ThumbnailLoaderTest, TwoAreMadeAtATime) {
    Make();
    studio.Close();
    loader->Want(Wishes({"a", "b", "c", "d"}));
    ASSERT_TRUE(studio.WaitUntilBegun(2));
    studio.Open();
    for (const char* name : {"a", "b", "c", "d"})
        ASSERT_TRUE(WaitFor(name));
    EXPECT_EQ(studio.most_at_once(), 2);
}

TEST_F(ThumbnailLoaderTest, MemoryIsBounded) {
    Make({.bytes = 3 * (kBytesOfOne + 1000), .workers = 1});
    for (const char* name : {"a", "b", "c", "d", "e"}) {
        loader->Want(Wishes({name}));
        ASSERT_TRUE(WaitFor(name));
    }
    EXPECT_LE(loader->bytes(), 3 * (kBytesOfOne + 1000));
    EXPECT_FALSE(Has("a"));
    EXPECT_FALSE(Has("b"));
    EXPECT_TRUE(Has("c"));
}

TEST_F(ThumbnailLoaderTest, WhatIsWantedIsNotDroppedForTheRest) {
    Make({.bytes = 3 * (kBytesOfOne + 1000), .workers = 1});
    loader->Want(Wishes({"a", "b"}));
    ASSERT_TRUE(WaitFor("b"));
    for (const char* name : {"c", "d", "e"}) {
        loader->Want(Wishes({"a", name}));
        ASSERT_TRUE(WaitFor(name));
    }
    EXPECT_TRUE(Has("a"));
}

TEST_F(ThumbnailLoaderTest, NoMoreIsMadeThanFits) {
    Make({.bytes = 2 * (kBytesOfOne + 1000), .workers = 1});
    loader->Want(Wishes({"a", "b", "c", "d"}));
    ASSERT_TRUE(WaitFor("b"));
    loader->Want(Wishes({"a", "b", "c", "d"}));
    loader->Want(Wishes({"x"}));
    ASSERT_TRUE(WaitFor("x"));
    EXPECT_EQ(studio.begun(), (std::vector<std::string>{"a", "b", "x"}));
}

TEST_F(ThumbnailLoaderTest, AnotherSizeIsMadeWhileTheOldOneIsShown) {
    Make();
    loader->Want(Wishes({"a"}));
    ASSERT_TRUE(WaitFor("a"));
    studio.Close();
    loader->Want(Wishes({"a"}, {80, 60}));
    ASSERT_TRUE(studio.WaitUntilBegun(2));
    EXPECT_EQ(loader->Find(Picture("a"))->box, kBox);
    studio.Open();
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return loader->Find(Picture("a"))->image.size() == QSize(80, 60); }, 20'000));
}

TEST_F(ThumbnailLoaderTest, WhatIsDoubtedIsShownAndMadeAgain) {
    Make();
    loader->Want(Wishes({"a"}));
    ASSERT_TRUE(WaitFor("a"));
    loader->Doubt();
    EXPECT_TRUE(Has("a"));
    loader->Want(Wishes({"a"}));
    EXPECT_TRUE(studio.WaitUntilBegun(2));
}

TEST_F(ThumbnailLoaderTest, AFailureSaysWhyAndNoPictureSaysNothing) {
    Make();
    loader->Want(Wishes({"bad", "none"}));
    ASSERT_TRUE(WaitFor("bad"));
    ASSERT_TRUE(WaitFor("none"));
    EXPECT_TRUE(loader->Find(Picture("bad"))->image.isNull());
    EXPECT_EQ(loader->Find(Picture("bad"))->failure.toStdString(), "bad: it is damaged");
    EXPECT_TRUE(loader->Find(Picture("none"))->failure.isEmpty());
}

TEST_F(ThumbnailLoaderTest, ClearedItKnowsAndMakesNothing) {
    Make({.workers = 1});
    loader->Want(Wishes({"a"}));
    ASSERT_TRUE(WaitFor("a"));
    studio.Close();
    loader->Want(Wishes({"b", "c"}));
    ASSERT_TRUE(studio.WaitUntilBegun(2));
    loader->Clear();
    EXPECT_FALSE(Has("a"));
    EXPECT_EQ(loader->bytes(), 0);
    studio.Open();
    loader->Want(Wishes({"d"}));
    ASSERT_TRUE(WaitFor("d"));
    EXPECT_EQ(studio.begun(), (std::vector<std::string>{"a", "b", "d"}));
}

TEST_F(ThumbnailLoaderTest, WhatWaitsIsNotMadeAtTheEnd) {
    Make({.workers = 1});
    studio.Close();
    std::vector<ThumbnailLoader::Wish> wishes = Wishes({"a", "b", "c"});
    const QString waits = wishes.back().picture.image_file;
    loader->Want(wishes);
    wishes.clear();
    ASSERT_TRUE(studio.WaitUntilBegun(1));
    ASSERT_FALSE(waits.isDetached()) << "the loader has the name, too";
    std::thread opener([&] {
        while (!waits.isDetached())
            std::this_thread::yield();
        studio.Open();
    });
    loader.reset();
    opener.join();
    EXPECT_EQ(studio.begun(), std::vector<std::string>{"a"});
}

}  // namespace
}  // namespace thumbnails
