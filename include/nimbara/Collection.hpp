#pragma once
// The child collections of the entities (a Guia's lines, a line's services, a client's contracts):
// 1-based lists without keys, whose items stay where they are while others are added.
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace nimbara {

template <class T>
class Collection {
public:
    std::size_t Count() const { return items_.size(); }

    // Item 1 is the first; any other index throws std::out_of_range, as the old collection raised.
    T& Item(std::size_t index) { return *items_.at(checked(index)); }
    const T& Item(std::size_t index) const { return *items_.at(checked(index)); }

    T& Add(std::unique_ptr<T> item)
    {
        items_.push_back(std::move(item));
        return *items_.back();
    }
    void Remove(std::size_t index) { items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(checked(index))); }
    void Clear() { items_.clear(); }

private:
    std::size_t checked(std::size_t index) const
    {
        if (index < 1 || index > items_.size())
            throw std::out_of_range("Invalid procedure call or argument: item " + std::to_string(index) + " of " +
                                    std::to_string(items_.size()));
        return index - 1;
    }
    std::vector<std::unique_ptr<T>> items_;
};

}  // namespace nimbara
