// Compares list nodes with a plain vector.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "foundation/urUtil/LinkedListNode.h"

namespace {

struct Page : urUtil::LinkedListNode<Page> {};
using Node = urUtil::LinkedListNode<Page>;

/// The pages of the list in order; checks every link against its reverse link.
std::vector<Page*> pagesOf(Node& sentinel) {
    std::vector<Page*> pages;
    for (Node* node = sentinel.next(); node != &sentinel; node = node->next()) {
        EXPECT_EQ(node->previous()->next(), node);
        pages.push_back(node->object());
    }
    EXPECT_EQ(sentinel.previous()->next(), &sentinel);
    return pages;
}

TEST(LinkedListNode, CircularListFollowsAPlainVector) {
    std::mt19937 random(5);
    std::vector<Page> pages(20);
    std::vector<Page*> model;
    Node sentinel;
    sentinel.makeSentinel();
    for (int step = 0; step < 5000; ++step) {
        Page& page = pages[random() % pages.size()];
        auto const place = std::find(model.begin(), model.end(), &page);
        if (place != model.end() && random() % 2) {
            page.moveBefore(sentinel);
            std::rotate(place, place + 1, model.end());
        } else if (place != model.end()) {
            page.unlink();
            model.erase(place);
            ASSERT_EQ(page.next(), nullptr);
            ASSERT_EQ(page.previous(), nullptr);
        } else {
            std::size_t const at = random() % (model.size() + 1);
            Node& before = at == 0 ? sentinel : static_cast<Node&>(*model[at - 1]);
            Node& after = at == model.size() ? sentinel : static_cast<Node&>(*model[at]);
            random() % 2 ? page.insertAfter(before) : page.insertBefore(after);
            model.insert(model.begin() + static_cast<std::ptrdiff_t>(at), &page);
        }
        ASSERT_EQ(pagesOf(sentinel), model);
    }
}

TEST(LinkedListNode, OpenListEndsWithNull) {
    Page first, middle, last;
    middle.insertAfter(first);
    last.insertAfter(middle);
    EXPECT_EQ(first.next(), &middle);
    EXPECT_EQ(last.next(), nullptr);
    first.unlink();
    first.insertBefore(middle);
    EXPECT_EQ(first.previous(), nullptr);
    EXPECT_EQ(middle.previous(), &first);
    last.unlink();
    EXPECT_EQ(middle.next(), nullptr);
}

}  // namespace
