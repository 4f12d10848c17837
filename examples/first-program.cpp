// Prints the names of all elements of a document.
#include <RynCommon/RynCommon.h>

#include <iostream>

using namespace RynCommon;

int main(int argc, char** argv) try {
    RyPtr<RyDocument> document(new RyDocument);
    document->load(UnicodeString::fromUTF8(argc > 1 ? argv[1] : "/dev/stdin"));
    RyNodeIterator nodes = document->getIterator();
    for (std::string name; RyNode* node = nodes.nextNode(); name.clear())
        if (node->isElementNode())
            std::cout << node->getNodeName().toString().toUTF8String(name) << '\n';
} catch (const RyError& error) {
    std::string message;
    std::cerr << error.getMessage().toUTF8String(message) << '\n';
    return 1;
}
