// The slabs of nodes: alignment, reuse, and nodes that pass between threads.
#include <cstdint>
#include <random>
#include <thread>

#include "tests/xml/tree/TreeFixture.h"

namespace {

using namespace treetest;

/// A class of a formatter, of a size that depends on how much it adds.
template <std::size_t SIZE, std::size_t ALIGNMENT>
class SizedElement : public RyElement {
public:
    explicit SizedElement(RyDocument* document)
        : RyElement(document, RyName(), RyName(), name("s")) {
        for (std::size_t i = 0; i < SIZE; ++i) bytes_[i] = static_cast<std::uint8_t>(i);
    }
    bool isSound() const {
        std::size_t i = 0;
        while (i < SIZE && bytes_[i] == static_cast<std::uint8_t>(i)) ++i;
        return i == SIZE && reinterpret_cast<std::uintptr_t>(bytes_) % ALIGNMENT == 0;
    }

private:
    alignas(ALIGNMENT) std::uint8_t bytes_[SIZE];
};

template <class Element>
int countUnsound(RyDocument* document, std::vector<RyPtr<RyNode>>& nodes) {
    const RyPtr<Element> element = new Element(document);
    nodes.emplace_back(element);
    return element->isSound() ? 0 : 1;
}

TEST(SlabMemory, ClassesOfAllSizesGetTheirRoomAndAlignment) {
    const RyPtr<RyDocument> document = new RyDocument;
    std::mt19937 random(99);
    std::vector<RyPtr<RyNode>> nodes;
    int unsound = 0;
    for (int i = 0; i < 5'000; ++i) {
        unsound += countUnsound<SizedElement<1, 1>>(document, nodes);
        unsound += countUnsound<SizedElement<16, 16>>(document, nodes);
        unsound += countUnsound<SizedElement<24, 8>>(document, nodes);
        unsound += countUnsound<SizedElement<80, 16>>(document, nodes);
        unsound += countUnsound<SizedElement<700, 16>>(document, nodes);
        nodes.emplace_back(document->createTextNode(u"some text"));
        for (int k = 0; k < 4; ++k) nodes[random() % nodes.size()] = nullptr;
    }
    EXPECT_EQ(unsound, 0);
    for (const auto& node : nodes) {
        if (const auto* const sized = dynamic_cast<const SizedElement<80, 16>*>(node.get()))
            unsound += !sized->isSound();
    }
    EXPECT_EQ(unsound, 0) << "after others have gone";
}

TEST(SlabMemory, NodesMayDieInOtherThreadsAndOutliveTheirOwn) {
    constexpr int THREADS = 3;
    constexpr int COUNT = 3'000;
    const RyPtr<RyDocument> document = new RyDocument;
    std::vector<RyPtr<RyNode>> made[THREADS];
    std::vector<std::thread> makers;
    for (auto& list : made) {
        makers.emplace_back([&list, &document] {
            for (int i = 0; i < COUNT; ++i) {
                const RyPtr<RyElement> element =
                    document->createElement(RyName(RynCommon::RN_name));
                element->setAttributeEx(RyName(), RyName(), RyName(RynCommon::RN_version),
                                        u"value");
                element->appendChildText(u"a text");
                list.emplace_back(element);
            }
        });
    }
    for (std::thread& thread : makers) thread.join();
    // Each list dies in two threads of its own, one of them from the back.
    std::vector<std::thread> takers;
    std::string sample;
    for (const auto& list : made) sample += dump(list[COUNT / 2]) + " ";
    for (auto& list : made) {
        for (int half = 0; half < 2; ++half) {
            takers.emplace_back([&list, half] {
                for (std::size_t i = 0; i < COUNT / 2; ++i)
                    list[half == 0 ? i : COUNT - 1 - i] = nullptr;
            });
        }
    }
    for (std::thread& thread : takers) thread.join();
    EXPECT_EQ(sample,
              "name[version=value](\"a text\") name[version=value](\"a text\") "
              "name[version=value](\"a text\") ");
    EXPECT_EQ(document->getRefCount(), 1);
}

}  // namespace
