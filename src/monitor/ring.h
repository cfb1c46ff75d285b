#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace kavro {

/// The newest items of a sequence, up to `capacity` of them; takes room for those it has alone.
template <typename Item>
class Ring {
public:
    explicit Ring(std::size_t capacity) : capacity_(capacity) {}

    /// Adds an item; the oldest one goes when the ring is full.
    void Push(const Item& item) {
        if (count_ == capacity_) {
            items_[first_] = item;
            first_ = (first_ + 1) % capacity_;
            dropped_ = true;
            return;
        }
        if (const std::size_t place = first_ + count_++;
            place < items_.size() || items_.size() == capacity_) {
            items_[place % capacity_] = item;
            return;
        }
        if (items_.size() == items_.capacity()) // a vector by itself would take more than it will ever need
            items_.reserve(std::min(std::max(2 * items_.size(), FirstItems), capacity_));
        items_.push_back(item);
    }

    /// Takes the newest item away again; there must be one.
    void PopBack() { --count_; }

    std::size_t Size() const { return count_; }
    bool Empty() const { return count_ == 0; }

    /// Item number `place`, from the oldest (0) on.
    const Item& operator[](std::size_t place) const { return items_[(first_ + place) % items_.size()]; }
    Item& Back() { return items_[(first_ + count_ - 1) % items_.size()]; }

    /// Whether an item has ever made room for another.
    bool Dropped() const { return dropped_; }

    /// Bytes that the items take.
    std::size_t Bytes() const { return items_.capacity() * sizeof(Item); }

private:
    static constexpr std::size_t FirstItems = 8;

    std::size_t capacity_;
    std::vector<Item> items_; // from place 0 on until it is full, then round and round
    std::size_t first_ = 0;
    std::size_t count_ = 0;
    bool dropped_ = false;
};

} // namespace kavro
