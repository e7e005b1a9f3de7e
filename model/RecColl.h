#pragma once
// The record collection: copies of records in insertion order, each under the
// key "$" + lID, with one cursor for walking forward and backward.
// Positions count from 1; cursor 0 stands before the first element.
// No member raises an error: failures answer false or a null element.

#include "Records.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qi {

template <class Rec>
class CRecColl {
    struct Entry {
        std::string key;
        std::unique_ptr<Rec> rec;
    };

public:
    /// Walks the elements in insertion order; the cursor is not touched.
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = Rec;
        using difference_type = std::ptrdiff_t;
        using pointer = Rec*;
        using reference = Rec&;
        explicit Iterator(typename std::vector<Entry>::const_iterator it) : it_(it) {}
        Rec& operator*() const { return *it_->rec; }
        Rec* operator->() const { return it_->rec.get(); }
        Iterator& operator++() { ++it_; return *this; }
        bool operator==(const Iterator& o) const { return it_ == o.it_; }
        bool operator!=(const Iterator& o) const { return it_ != o.it_; }

    private:
        typename std::vector<Entry>::const_iterator it_;
    };

    CRecColl() = default;
    CRecColl(const CRecColl&) = delete;
    CRecColl& operator=(const CRecColl&) = delete;

    /// Number of elements.
    std::int32_t Count() const { return static_cast<std::int32_t>(store_.size()); }
    /// The cursor: 0 before the first element, k when element k is current.
    std::int32_t CurPosition() const { return cursor_; }

    /// Element at a 1-based position, or null when out of range; the cursor stays.
    Rec* Item(std::int32_t position) const
    {
        if (position < 1 || position > Count())
            return nullptr;
        return store_[std::size_t(position - 1)].rec.get();
    }
    /// Element under a key made by MakeIndex, or null; the cursor stays.
    Rec* Item(std::string_view key) const
    {
        const auto it = byKey_.find(std::string(key));
        return it == byKey_.end() ? nullptr : it->second;
    }

    Iterator begin() const { return Iterator(store_.cbegin()); }
    Iterator end() const { return Iterator(store_.cend()); }

    /// "$" followed by the decimal number ("$17", "$0", "$-3").
    static std::string MakeIndex(std::int32_t number) { return "$" + std::to_string(number); }

    /// Removes every element, then sets the cursor to 0.
    void Clear()
    {
        store_.clear();
        byKey_.clear();
        cursor_ = 0;
    }

    /// Replaces the contents by copies of the source's elements (in its insertion order).
    /// Null source: false, contents kept. A failing Append stops the copy with false.
    bool CopyFrom(const CRecColl* source)
    {
        if (!source)
            return false;
        if (source == this) {
            cursor_ = 0;
            return true;
        }
        Clear();
        for (const Rec& r : *source)
            if (!Append(&r))
                return false;
        return true;
    }

    /// Adds a copy of the record at the end, under MakeIndex(lID). False for null
    /// or when the key is already there; nothing is added then. The cursor stays.
    bool Append(const Rec* record)
    {
        if (!record)
            return false;
        std::string key = MakeIndex(record->lID);
        if (byKey_.count(key))
            return false;
        auto copy = std::make_unique<Rec>();
        copy->CopyFrom(*record);
        byKey_.emplace(key, copy.get());
        store_.push_back(Entry{std::move(key), std::move(copy)});
        return true;
    }

    void ResetIndex() { cursor_ = 0; }

    /// Moves forward and hands out the new current element; false (and null) past the end.
    bool GetNext(Rec*& record)
    {
        record = nullptr;
        if (Count() > 0 && cursor_ >= 0 && cursor_ < Count()) {
            record = store_[std::size_t(cursor_)].rec.get();
            ++cursor_;
            return true;
        }
        return false;
    }

    /// Moves back and hands out the new current element. From cursor 0 it yields the
    /// last element; from the first element it answers false (no wrap).
    bool GetPrev(Rec*& record)
    {
        record = nullptr;
        if (Count() == 0)
            return false;
        if (cursor_ == 0) {
            record = store_.back().rec.get();
            cursor_ = Count();
            return true;
        }
        if (cursor_ >= 2 && cursor_ <= Count()) {
            --cursor_;
            record = store_[std::size_t(cursor_ - 1)].rec.get();
            return true;
        }
        return false;
    }

    /// Removes the current element and steps the cursor back, so that the next
    /// GetNext yields the element after the removed one.
    bool RemoveOnPos()
    {
        if (Count() > 0 && cursor_ != 0 && cursor_ <= Count()) {
            removeAt(std::size_t(cursor_ - 1));
            --cursor_;
            return true;
        }
        return false;
    }

    /// Removes the element at a 1-based position; on success the cursor goes to 0.
    bool RemoveOn(std::int32_t position)
    {
        if (position < 1 || position > Count())
            return false;
        removeAt(std::size_t(position - 1));
        cursor_ = 0;
        return true;
    }
    /// Removes the element under a key; on success the cursor goes to 0.
    bool RemoveOn(std::string_view key)
    {
        const auto it = byKey_.find(std::string(key));
        if (it == byKey_.end())
            return false;
        for (std::size_t i = 0; i < store_.size(); ++i)
            if (store_[i].rec.get() == it->second) {
                removeAt(i);
                break;
            }
        cursor_ = 0;
        return true;
    }

private:
    void removeAt(std::size_t index)
    {
        byKey_.erase(store_[index].key);
        store_.erase(store_.begin() + std::ptrdiff_t(index));
    }

    std::vector<Entry> store_;
    std::unordered_map<std::string, Rec*> byKey_;
    std::int32_t cursor_ = 0;
};

using CAuftragRecColl = CRecColl<CAuftragRec>;
using CArtikellisteRecColl = CRecColl<CArtikellisteRec>;
using CDateienRecColl = CRecColl<CDateienRec>;
using CDatInventurRecColl = CRecColl<CDatInventurRec>;
using CDifferenzlisteRecColl = CRecColl<CDifferenzlisteRec>;
using CInvlisteRecColl = CRecColl<CInvlisteRec>;
using CRaumRecColl = CRecColl<CRaumRec>;

} // namespace qi
