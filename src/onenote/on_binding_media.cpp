// Images, embedded files and recordings, ink, the data holders, and FutureObject.
#include "onenote/on_binding.h"

namespace qm::xml {

using namespace ON::bind;

template <>
struct Binding<ON::Image> : ON::OneNoteBinding {
    using E = ON::Image;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple_cat(
        PageObjectFields<E>(),
        std::tuple{Attr<E>(u"format", &E::format), Attr<E>(u"xpsFileIndex", &E::xpsFileIndex),
                   Attr<E>(u"originalDocumentNumber", &E::originalDocumentNumber),
                   Attr<E>(u"originalPageNumber", &E::originalPageNumber), Attr<E>(u"isPrintOut", &E::isPrintOut),
                   Attr<E>(u"backgroundImage", &E::backgroundImage), Attr<E>(u"hyperlink", &E::hyperlink),
                   Attr<E>(u"alt", &E::alt), ListOf(&E::meta), ChoicesOf(&E::tags), SlotOf<E>(&E::file),
                   SlotOf<E>(&E::data), SlotOf<E>(&E::callbackID), SlotOf<E>(&E::ocrData)});
};

template <>
struct Binding<ON::OCRData> : ON::OneNoteBinding {
    using E = ON::OCRData;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields =
        std::tuple{Attr<E>(u"lang", &E::lang), SlotOf<E>(&E::ocrText), ListOf(&E::ocrTokens)};
};

template <>
struct Binding<ON::OCRText> : ON::OneNoteBinding {
    static constexpr std::u16string_view kName = ON::OCRText::kName;
    static constexpr auto kFields = std::tuple{Text(&ON::OCRText::text)};
};

template <>
struct Binding<ON::OCRToken> : ON::OneNoteBinding {
    using E = ON::OCRToken;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields =
        std::tuple{Attr<E>(u"startPos", &E::startPos), Attr<E>(u"region", &E::region), Attr<E>(u"line", &E::line),
                   Attr<E>(u"x", &E::x),        Attr<E>(u"y", &E::y),        Attr<E>(u"width", &E::width),
                   Attr<E>(u"height", &E::height)};
};

template <class E>
constexpr auto InsertedFileFields() {
    using F = ON::InsertedFileAttributes;
    return std::tuple_cat(PageObjectFields<E>(),
                          std::tuple{Attr<E>(u"pathSource", &F::pathSource), Attr<E>(u"pathCache", &F::pathCache),
                                     Attr<E>(u"preferredName", &F::preferredName)});
}

template <>
struct Binding<ON::InsertedFile> : ON::OneNoteBinding {
    using E = ON::InsertedFile;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields =
        std::tuple_cat(InsertedFileFields<E>(), std::tuple{ListOf(&E::meta), ChoicesOf(&E::tags)});
};

template <>
struct Binding<ON::MediaFile> : ON::OneNoteBinding {
    using E = ON::MediaFile;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple_cat(
        InsertedFileFields<E>(), std::tuple{ListOf(&E::meta), ChoicesOf(&E::tags), SlotOf<E>(&E::mediaReference)});
};

template <>
struct Binding<ON::InkDrawing> : ON::OneNoteBinding {
    using E = ON::InkDrawing;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple_cat(
        PageObjectFields<E>(),
        std::tuple{Attr<E>(u"isUnclassified", &E::isUnclassified), Attr<E>(u"inkOriginX", &E::inkOriginX),
                   Attr<E>(u"inkOriginY", &E::inkOriginY), ListOf(&E::meta), ChoicesOf(&E::tags),
                   SlotOf<E>(&E::shapeInfo), SlotOf<E>(&E::file), SlotOf<E>(&E::data), SlotOf<E>(&E::callbackID)});
};

template <>
struct Binding<ON::ShapeInfo> : ON::OneNoteBinding {
    using E = ON::ShapeInfo;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"isLine", &E::isLine), ListOf(&E::anchorPoints)};
};

template <>
struct Binding<ON::AnchorPoint> : ON::OneNoteBinding {
    using E = ON::AnchorPoint;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"x", &E::x), Attr<E>(u"y", &E::y)};
};

template <>
struct Binding<ON::InkWord> : ON::OneNoteBinding {
    using E = ON::InkWord;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{
        Attr<E>(u"recognizedText", &E::recognizedText), Attr<E>(u"selected", &E::selected), Attr<E>(u"x", &E::x),
        Attr<E>(u"y", &E::y), Attr<E>(u"width", &E::width), Attr<E>(u"height", &E::height),
        Attr<E>(u"style", &E::style), Attr<E>(u"inkOriginX", &E::inkOriginX),
        Attr<E>(u"inkOriginY", &E::inkOriginY), SlotOf<E>(&E::file), SlotOf<E>(&E::data),
        SlotOf<E>(&E::callbackID), SlotOf<E>(&E::space), SlotOf<E>(&E::endOfLine)};
};

template <>
struct Binding<ON::InkParagraph> : ON::OneNoteBinding {
    using E = ON::InkParagraph;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"x", &E::x), Attr<E>(u"y", &E::y),
                                               Attr<E>(u"width", &E::width), Attr<E>(u"height", &E::height),
                                               ListOf(&E::inkWords)};
};

template <>
struct Binding<ON::Space> : ON::OneNoteBinding {
    static constexpr std::u16string_view kName = ON::Space::kName;
    static constexpr auto kFields = std::tuple{};
};

template <>
struct Binding<ON::EndOfLine> : ON::OneNoteBinding {
    static constexpr std::u16string_view kName = ON::EndOfLine::kName;
    static constexpr auto kFields = std::tuple{};
};

template <>
struct Binding<ON::File> : ON::OneNoteBinding {
    static constexpr std::u16string_view kName = ON::File::kName;
    static constexpr auto kFields = std::tuple{Attr<ON::File>(u"path", &ON::File::path)};
};

template <>
struct Binding<ON::Data> : ON::OneNoteBinding {
    static constexpr std::u16string_view kName = ON::Data::kName;
    static constexpr auto kFields = std::tuple{Text(&ON::Data::text)};
};

template <>
struct Binding<ON::CallbackID> : ON::OneNoteBinding {
    static constexpr std::u16string_view kName = ON::CallbackID::kName;
    static constexpr auto kFields = std::tuple{Attr<ON::CallbackID>(u"callbackID", &ON::CallbackID::callbackID)};
};

// Nothing modelled: everything it holds goes to `unknown` and comes back out as read.
template <>
struct Binding<ON::FutureObject> : ON::OneNoteBinding {
    static constexpr std::u16string_view kName = ON::FutureObject::kName;
    static constexpr auto kFields = std::tuple{};
};

QM_ON_INSTANTIATE(Image)
QM_ON_INSTANTIATE(OCRData)
QM_ON_INSTANTIATE(OCRText)
QM_ON_INSTANTIATE(OCRToken)
QM_ON_INSTANTIATE(InsertedFile)
QM_ON_INSTANTIATE(MediaFile)
QM_ON_INSTANTIATE(InkDrawing)
QM_ON_INSTANTIATE(ShapeInfo)
QM_ON_INSTANTIATE(AnchorPoint)
QM_ON_INSTANTIATE(InkWord)
QM_ON_INSTANTIATE(InkParagraph)
QM_ON_INSTANTIATE(Space)
QM_ON_INSTANTIATE(EndOfLine)
QM_ON_INSTANTIATE(File)
QM_ON_INSTANTIATE(Data)
QM_ON_INSTANTIATE(CallbackID)
QM_ON_INSTANTIATE(FutureObject)

}  // namespace qm::xml
