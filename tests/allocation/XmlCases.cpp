// Documents: parsing, loading, walking, editing, saving.
#include <RynCommon/RyDocument.h>
#include <RynCommon/RyNodeIterator.h>
#include <RynCommon/RyXmlUtil.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "tests/allocation/Inputs.h"
#include "xml/parser/DtdCache.h"

namespace allocation {
namespace {

using namespace RynCommon;

const std::string LONG = "a text that is longer than what a string keeps within itself ";

/// All kinds of markup, values that lie in a window and values that do not, narrow and wide texts,
/// more attributes than are compared one by one.
std::string sample(const std::string& declaration = "") {
    std::string text = declaration +
                       "<!DOCTYPE r [<!ENTITY e 'an entity with &#x3042; a long replacement text'>"
                       "<!ENTITY % p '<!ENTITY f \"of a parameter entity, &amp; long enough\">'>%p;"
                       "<!ATTLIST r:m d CDATA 'a default value that is longer than most are'"
                       " t NMTOKENS ' a  default value that has too many  blanks '>]>"
                       "<r:m xmlns:r='urn:one' xmlns='urn:two' a='" +
                       LONG + "&amp; &e;' b='\xE3\x81\x82'>";
    text += "<!-- " + LONG + " --><?pi " + LONG + "?><![CDATA[" + LONG + "]]>&e; &f; &lt;" + LONG;
    text += "<many";
    for (int i = 0; i < 20; ++i) text += " n" + std::to_string(i) + "='" + LONG + "'";
    text += "/>";
    for (int i = 0; i < 20; ++i) {
        text += "<item id='x" + std::to_string(i) + "'>" + LONG + "\xE3\x81\x82\xE3\x81\x84 " +
                "<b xmlns='urn:inner'>short</b></item>";
    }
    text += "<long>" + repeat(LONG, 300) + "</long>";
    return text + "</r:m>";
}

std::string toUtf16(const std::string& text) {
    const UnicodeString wide = widen("\xEF\xBB\xBF" + text);
    return {reinterpret_cast<const char*>(wide.getBuffer()),
            static_cast<std::size_t>(wide.length()) * 2};
}

std::string saved(RyDocument& document) {
    const Pause pause;
    return narrow(document.saveXml());
}

RyPtr<RyDocument> loaded() {
    RyPtr<RyDocument> document = new RyDocument;
    document->loadXml(widen(sample()));
    return document;
}

Call loadCall(const char* what, const std::string& bytes, bool pull = false) {
    const auto make = [bytes, pull]() -> Action {
        RyPtr<RyDocument> document = new RyDocument;
        document->setPullMode(pull);
        return [document, bytes]() mutable {
            const auto in = openBytes(bytes);
            document->load(*in);
            int nodes = 0;
            RyTreeIterator place(document);
            while (place.nextNode() != nullptr) ++nodes;
            return paused([&] { return std::to_string(nodes) + saved(*document); });
        };
    };
    return {what, make, Ending::ERROR};
}

TEST(Allocation, Loading) {
    const std::string plain = sample();
    const std::string latin = "<?xml version='1.0' encoding='ISO-8859-1'?><r a='\xE9'>" +
                              repeat("\xE9t\xE9 ", 100) + "</r>";
    const std::string japanese = "<?xml version='1.0' encoding='Shift_JIS'?><r a='\x82\xA0'>" +
                                 repeat("\x82\xA0 ", 100) + "</r>";
    const std::string korean =
        "<?xml version='1.0' encoding='ISO-2022-KR'?><r>" + repeat("text ", 100) + "</r>";
    sweep({
        loadCall("UTF-8", plain),
        loadCall("UTF-8, lazily", plain, true),
        loadCall("UTF-16", toUtf16(plain)),
        loadCall("ISO-8859-1", latin),
        loadCall("Shift_JIS", japanese),
        loadCall("a converter of ICU", korean),
    });
}

TEST(Allocation, LoadingOtherwise) {
    const std::string file = ::testing::TempDir() + "allocation-" +
                             std::to_string(reinterpret_cast<std::uintptr_t>(&file)) + ".xml";
    std::ofstream(file) << sample();
    const auto onText = []() -> Action {
        RyPtr<RyDocument> document = new RyDocument;
        return [document, text = widen(sample())]() mutable {
            document->loadXml(text);
            return saved(*document);
        };
    };
    const auto onFile = [&file]() -> Action {
        RyPtr<RyDocument> document = new RyDocument;
        return [document, uri = widen(file)]() mutable {
            document->load(uri);
            return saved(*document);
        };
    };
    const std::string dtd = file + ".dtd";
    std::ofstream(dtd) << "<!ENTITY e 'an entity of the external subset, and long'>";
    const std::string part = file + ".ent";
    std::ofstream(part) << "<?xml encoding='UTF-8'?><b>" + LONG + "</b>";
    const std::string outside = "<!DOCTYPE r SYSTEM '" + dtd + "' [<!ENTITY x SYSTEM '" + part +
                                "'>]><r a='&e;'>&e;&x;</r>";
    const auto onOutside = [&outside]() -> Action {
        RyPtr<RyDocument> document = new RyDocument;
        return [document, text = widen(outside)]() mutable {
            paused([] { DtdCache::instance().clear(); });
            document->loadXml(text);
            const std::string result = saved(*document);
            paused([] { DtdCache::instance().clear(); });
            return result;
        };
    };
    const auto onRoot = [&file]() -> Action {
        return [uri = widen(file)] {
            RyName local;
            const RyName ns = RyXmlUtil::getRootName(local, uri);
            return narrow(ns.toString()) + narrow(local.toString());
        };
    };
    sweep({
        {"from a text", onText, Ending::ERROR},
        {"from a file", onFile, Ending::ERROR},
        {"external entities", onOutside, Ending::ERROR},
        {"the root's name", onRoot, Ending::EXCEPTION},
    });
    for (const std::string& path : {file, dtd, part}) std::remove(path.c_str());
}

std::string describe(const RyXmlParser& parser) {
    const Pause pause;
    std::string text = std::to_string(parser.getEventType()) + narrow(parser.getName().toString()) +
                       narrow(parser.getText());
    for (int i = 0; i < parser.getAttributeCount(); ++i)
        text += narrow(parser.getAttributeName(i).toString()) + narrow(parser.getAttributeValue(i));
    return text;
}

TEST(Allocation, Events) {
    const auto make = [](bool tokens) {
        return [tokens]() -> Action {
            RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
            return [parser, tokens, bytes = sample()]() mutable {
                const auto in = openBytes(bytes);
                parser->setInput(*in, UnicodeString(), UnicodeString());
                std::string events;
                while ((tokens ? parser->nextToken() : parser->next()) !=
                       RyXmlParser::END_DOCUMENT) {
                    const Pause pause;
                    events += describe(*parser);
                }
                return events;
            };
        };
    };
    sweep({{"events", make(false), Ending::ERROR}, {"tokens", make(true), Ending::ERROR}});
}

TEST(Allocation, Editing) {
    const RyName name{UnicodeString(u"edited")}, other{UnicodeString(u"p:other")};
    const RyName uri{UnicodeString(u"urn:a-namespace")};
    const UnicodeString longText = widen(LONG);
    const UnicodeString text(u"a text that is longer than short ones");
    const UnicodeString content(u"target and its content, a long one");
    const auto build = [=](RyDocument& document) {
        document.removeAllChildNodes();
        const RyPtr<RyElement> root = document.createElement(name);
        document.appendChild(root);
        for (int i = 0; i < 3; ++i) {
            const RyPtr<RyElement> child = document.createElementNS(uri, other);
            root->insertBefore(child, root->getFirstChild());
            child->setAttribute(name, RyValue(u"a value longer than most values"));
            child->setAttributeNS(uri, other, RyValue(12, RYUNIT_PT));
            child->appendChild(document.createTextNode(text));
            child->appendChild(document.createProcessingInstruction(content));
        }
        root->replaceChild(document.createTextNode(u"in its place"), root->getLastChild());
        root->appendChild(root->getFirstChild()->cloneNode(true));
        root->removeChild(root->getFirstChild());
        root->getLastChild()->getFirstChild()->setText(text);
        root->getFirstChild()->getFirstChild()->setText(longText);
    };
    const auto edit = [=]() -> Action {
        RyPtr<RyDocument> document = new RyDocument;
        return [=]() mutable {
            build(*document);
            return saved(*document);
        };
    };
    const auto look = []() -> Action {
        return [document = loaded()]() mutable {
            RyElement* const root = document->getDocumentElement();
            const UnicodeString inner = root->getInnerText();
            const RyPtr<RyNodeList> items =
                root->getElementsByTagName(RyName(UnicodeString(u"item")));
            const UnicodeString value = root->getAttribute(RyName(UnicodeString(u"a"))).toString();
            return narrow(inner) + std::to_string(items->getLength()) + narrow(value) +
                   narrow(root->getNodeName().toString());
        };
    };
    const auto clone = []() -> Action {
        return [document = loaded()]() mutable {
            const RyPtr<RyNode> copy = document->cloneNode(true);
            return saved(static_cast<RyDocument&>(*copy));
        };
    };
    sweep({{"editing", edit}, {"queries", look}, {"a copy", clone}});
}

TEST(Allocation, Saving) {
    const auto text = []() -> Action {
        return [document = loaded()]() mutable { return narrow(document->saveXml()); };
    };
    const auto stream = [](const char16_t* encoding) {
        return [encoding]() -> Action {
            return [document = loaded(), encoding]() mutable {
                const auto out = paused([] { return std::make_unique<FixedOut>(); });
                document->save(*out, nullptr, encoding, u"r SYSTEM 'a-system-id'");
                return out->written();
            };
        };
    };
    sweep({
        {"as a text", text, Ending::ERROR},
        {"UTF-8", stream(u"UTF-8"), Ending::ERROR},
        {"UTF-16", stream(u"UTF-16"), Ending::ERROR},
        {"ISO-8859-1", stream(u"ISO-8859-1"), Ending::ERROR},
        {"Shift_JIS", stream(u"Shift_JIS"), Ending::ERROR},
    });
}

}  // namespace
}  // namespace allocation
