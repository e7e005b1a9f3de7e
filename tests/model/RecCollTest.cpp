#include "RecColl.h"

#include <gtest/gtest.h>

using namespace qi;

namespace {
CRaumRec room(std::int32_t id, const std::string& nr)
{
    CRaumRec r;
    r.lID = id;
    r.stRaumNr = nr;
    return r;
}
void fill(CRaumRecColl& c, std::initializer_list<std::int32_t> ids)
{
    for (auto id : ids) {
        const CRaumRec r = room(id, "R" + std::to_string(id));
        ASSERT_TRUE(c.Append(&r));
    }
}
} // namespace

TEST(RecColl, EmptyCollection)
{
    CRaumRecColl c;
    EXPECT_EQ(c.Count(), 0);
    EXPECT_EQ(c.CurPosition(), 0);
    CRaumRec* r = reinterpret_cast<CRaumRec*>(1);
    EXPECT_FALSE(c.GetNext(r));
    EXPECT_EQ(r, nullptr);
    r = reinterpret_cast<CRaumRec*>(1);
    EXPECT_FALSE(c.GetPrev(r));
    EXPECT_EQ(r, nullptr);
    EXPECT_FALSE(c.RemoveOnPos());
}

TEST(RecColl, SecondAppendWithSameIdIsRefused)
{
    CRaumRecColl c;
    const CRaumRec a = room(0, "A"), b = room(0, "B");
    EXPECT_TRUE(c.Append(&a));
    EXPECT_FALSE(c.Append(&b));
    EXPECT_EQ(c.Count(), 1);
    EXPECT_EQ(c.Item(1)->stRaumNr, "A");
}

TEST(RecColl, AppendNullIsRefused)
{
    CRaumRecColl c;
    EXPECT_FALSE(c.Append(nullptr));
    EXPECT_EQ(c.Count(), 0);
}

TEST(RecColl, ItemByKeyAndByPositionDiffer)
{
    CRaumRecColl c;
    fill(c, {9, 8, 7, 6, 5, 4});
    ASSERT_NE(c.Item("$5"), nullptr);
    EXPECT_EQ(c.Item("$5")->lID, 5);
    ASSERT_NE(c.Item(5), nullptr);
    EXPECT_EQ(c.Item(5)->lID, 5); // the fifth element appended happens to be id 5 too
    EXPECT_EQ(c.Item(1)->lID, 9);
    EXPECT_EQ(c.Item("$9"), c.Item(1));
    EXPECT_EQ(c.Item(0), nullptr);
    EXPECT_EQ(c.Item(7), nullptr);
    EXPECT_EQ(c.Item("$77"), nullptr);
    EXPECT_EQ(c.Item("9"), nullptr);
}

TEST(RecColl, ItemByKeyAndPositionCanPointAtDifferentElements)
{
    CRaumRecColl c;
    fill(c, {1, 5, 3, 4, 2});
    EXPECT_EQ(c.Item("$5")->lID, 5);
    EXPECT_EQ(c.Item(5)->lID, 2);
    EXPECT_EQ(c.CurPosition(), 0);
}

TEST(RecColl, MakeIndex)
{
    EXPECT_EQ(CRaumRecColl::MakeIndex(17), "$17");
    EXPECT_EQ(CRaumRecColl::MakeIndex(0), "$0");
    EXPECT_EQ(CRaumRecColl::MakeIndex(-3), "$-3");
}

TEST(RecColl, GetPrevAfterResetGivesLastAndCursorAtCount)
{
    CRaumRecColl c;
    fill(c, {1, 2, 3});
    CRaumRec* r = nullptr;
    c.GetNext(r);
    c.ResetIndex();
    ASSERT_TRUE(c.GetPrev(r));
    EXPECT_EQ(r->lID, 3);
    EXPECT_EQ(c.CurPosition(), c.Count());
    ASSERT_TRUE(c.GetPrev(r));
    EXPECT_EQ(r->lID, 2);
    ASSERT_TRUE(c.GetPrev(r));
    EXPECT_EQ(r->lID, 1);
    EXPECT_EQ(c.CurPosition(), 1);
    EXPECT_FALSE(c.GetPrev(r)); // no wrap from the first element
    EXPECT_EQ(r, nullptr);
    EXPECT_EQ(c.CurPosition(), 1);
}

TEST(RecColl, GetNextPastTheEndKeepsCursorAtCount)
{
    CRaumRecColl c;
    fill(c, {1, 2});
    CRaumRec* r = nullptr;
    ASSERT_TRUE(c.GetNext(r));
    ASSERT_TRUE(c.GetNext(r));
    EXPECT_EQ(r->lID, 2);
    EXPECT_EQ(c.CurPosition(), 2);
    EXPECT_FALSE(c.GetNext(r));
    EXPECT_EQ(r, nullptr);
    EXPECT_EQ(c.CurPosition(), c.Count());
}

TEST(RecColl, RemoveOnPosWhileWalkingEmptiesWithoutSkipping)
{
    CRaumRecColl c;
    fill(c, {1, 2, 3, 4, 5});
    std::vector<std::int32_t> seen;
    CRaumRec* r = nullptr;
    c.ResetIndex();
    while (c.GetNext(r)) {
        seen.push_back(r->lID);
        ASSERT_TRUE(c.RemoveOnPos());
    }
    EXPECT_EQ(seen, (std::vector<std::int32_t>{1, 2, 3, 4, 5}));
    EXPECT_EQ(c.Count(), 0);
    EXPECT_EQ(c.CurPosition(), 0);
}

TEST(RecColl, RemoveOnByPositionAndKeyResetsCursor)
{
    CRaumRecColl c;
    fill(c, {10, 20, 30});
    CRaumRec* r = nullptr;
    c.GetNext(r);
    c.GetNext(r);
    EXPECT_TRUE(c.RemoveOn("$10"));
    EXPECT_EQ(c.CurPosition(), 0);
    EXPECT_EQ(c.Count(), 2);
    EXPECT_EQ(c.Item("$10"), nullptr);
    c.GetNext(r);
    EXPECT_TRUE(c.RemoveOn(2));
    EXPECT_EQ(c.CurPosition(), 0);
    EXPECT_EQ(c.Count(), 1);
    EXPECT_EQ(c.Item(1)->lID, 20);
    c.GetNext(r);
    EXPECT_FALSE(c.RemoveOn("$99"));
    EXPECT_FALSE(c.RemoveOn(5));
    EXPECT_EQ(c.CurPosition(), 1);
    // A removed key can be used again.
    const CRaumRec again = room(10, "neu");
    EXPECT_TRUE(c.Append(&again));
}

TEST(RecColl, CopyFromNullKeepsContents)
{
    CRaumRecColl c;
    fill(c, {1, 2});
    EXPECT_FALSE(c.CopyFrom(nullptr));
    EXPECT_EQ(c.Count(), 2);
}

TEST(RecColl, CopyFromCopiesInInsertionOrderAndResetsCursor)
{
    CRaumRecColl src;
    fill(src, {3, 1, 2});
    CRaumRec* r = nullptr;
    src.GetNext(r);
    CRaumRecColl dst;
    fill(dst, {99});
    dst.GetNext(r);
    EXPECT_TRUE(dst.CopyFrom(&src));
    EXPECT_EQ(dst.Count(), 3);
    EXPECT_EQ(dst.Item(1)->lID, 3);
    EXPECT_EQ(dst.Item(3)->lID, 2);
    EXPECT_EQ(dst.CurPosition(), 0);
    EXPECT_EQ(src.CurPosition(), 1);
    EXPECT_NE(dst.Item(1), src.Item(1)); // copies, not the same objects
}

TEST(RecColl, ChangingTheRecordAfterAppendDoesNotChangeTheElement)
{
    CRaumRecColl c;
    CRaumRec r = room(4, "alt");
    c.Append(&r);
    r.stRaumNr = "neu";
    EXPECT_EQ(c.Item("$4")->stRaumNr, "alt");
}

TEST(RecColl, ClearEmptiesAndResetsCursor)
{
    CRaumRecColl c;
    fill(c, {1, 2, 3});
    CRaumRec* r = nullptr;
    c.GetNext(r);
    c.Clear();
    EXPECT_EQ(c.Count(), 0);
    EXPECT_EQ(c.CurPosition(), 0);
    EXPECT_EQ(c.Item("$1"), nullptr);
}

TEST(RecColl, EnumerationWalksInInsertionOrderWithoutMovingTheCursor)
{
    CRaumRecColl c;
    fill(c, {5, 3, 9});
    CRaumRec* r = nullptr;
    c.GetNext(r);
    std::vector<std::int32_t> ids;
    for (const CRaumRec& e : c)
        ids.push_back(e.lID);
    EXPECT_EQ(ids, (std::vector<std::int32_t>{5, 3, 9}));
    EXPECT_EQ(c.CurPosition(), 1);
}

TEST(RecColl, AppendDoesNotMoveTheCursor)
{
    CRaumRecColl c;
    fill(c, {1});
    CRaumRec* r = nullptr;
    c.GetNext(r);
    fill(c, {2});
    EXPECT_EQ(c.CurPosition(), 1);
    ASSERT_TRUE(c.GetNext(r));
    EXPECT_EQ(r->lID, 2);
}

TEST(RecColl, SevenPublicNamesShareOneDesign)
{
    CAuftragRecColl a; CArtikellisteRecColl b; CDateienRecColl d; CDatInventurRecColl e;
    CDifferenzlisteRecColl f; CInvlisteRecColl g; CRaumRecColl h;
    CDifferenzlisteRec rec;
    rec.lID = 2;
    EXPECT_TRUE(f.Append(&rec));
    EXPECT_EQ(f.Item("$2")->stTyp, "0");
    EXPECT_EQ(a.Count() + b.Count() + d.Count() + e.Count() + g.Count() + h.Count(), 0);
}

TEST(RecColl, CopyFromItselfKeepsTheElementsAndResetsCursor)
{
    CRaumRecColl c;
    fill(c, {4, 5});
    CRaumRec* r = nullptr;
    c.GetNext(r);
    c.GetNext(r);
    ASSERT_EQ(c.CurPosition(), 2);
    EXPECT_TRUE(c.CopyFrom(&c));
    EXPECT_EQ(c.Count(), 2);
    EXPECT_EQ(c.CurPosition(), 0);
    ASSERT_TRUE(c.GetNext(r));
    EXPECT_EQ(r->lID, 4);
}
