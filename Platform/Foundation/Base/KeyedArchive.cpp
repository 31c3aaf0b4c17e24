#include "PropertyList.h"

#include "PlistNode.h"
#include "ReferenceDate.h"

#include <cstdlib>
#include <initializer_list>
#include <utility>

namespace virlo
{

// The layout: "$objects" holds every object once, the first standing for none; wherever one refers to another
// stands its place in that list. "$top" names the root object.

namespace
{

constexpr const char* archiverName = "NSKeyedArchiver";
constexpr std::uint64_t archiverVersion = 100000;
constexpr const char* noObject = "$null";

class Writer
{
public:
    Writer() { add(PlistNode::newString(noObject)); }

    std::string archive(const std::vector<PropertyList::ArchivedObject>& objects)
    {
        // The root takes the place after "$null" before its elements are known.
        const plist_t root = plist_new_dict();
        const auto rootPlace = add(root);
        const plist_t elements = plist_new_array();
        for (const auto& object : objects)
            plist_array_append_item(elements, plist_new_uid(addObject(object)));
        plist_dict_set_item(root, "NS.objects", elements);
        plist_dict_set_item(root, "$class",
                            plist_new_uid(classPlace("NSMutableArray", {"NSArray", "NSObject"})));

        const PlistNode::Owned whole(plist_new_dict());
        const plist_t top = plist_new_dict();
        plist_dict_set_item(top, "root", plist_new_uid(rootPlace));
        plist_dict_set_item(whole.get(), "$version", plist_new_uint(archiverVersion));
        plist_dict_set_item(whole.get(), "$archiver", PlistNode::newString(archiverName));
        plist_dict_set_item(whole.get(), "$top", top);
        plist_dict_set_item(whole.get(), "$objects", m_objects.release());
        return PlistNode::binary(whole);
    }

private:
    std::uint64_t add(plist_t object)
    {
        plist_array_append_item(m_objects.get(), object);
        return m_count++;
    }

    std::uint64_t addObject(const PropertyList::ArchivedObject& object)
    {
        const plist_t node = plist_new_dict();
        const auto place = add(node);
        for (const auto& [key, text] : object.strings)
            plist_dict_set_item(node, key.c_str(), plist_new_uid(stringPlace(text)));
        for (const auto& [key, date] : object.dates)
            plist_dict_set_item(node, key.c_str(), plist_new_uid(addDate(date)));
        plist_dict_set_item(node, "$class", plist_new_uid(classPlace(object.className, {"NSObject"})));
        return place;
    }

    std::uint64_t addDate(Date date)
    {
        const plist_t node = plist_new_dict();
        plist_dict_set_item(node, "NS.time", plist_new_real(ReferenceDate::secondsFromDate(date)));
        plist_dict_set_item(node, "$class", plist_new_uid(classPlace("NSDate", {"NSObject"})));
        return add(node);
    }

    std::uint64_t stringPlace(const std::string& text)
    {
        const auto [place, isNew] = m_strings.try_emplace(text, 0);
        if (isNew)
            place->second = add(PlistNode::newString(text));
        return place->second;
    }

    std::uint64_t classPlace(const std::string& name, std::initializer_list<const char*> ancestors)
    {
        const auto [place, isNew] = m_classes.try_emplace(name, 0);
        if (isNew) {
            const plist_t names = plist_new_array();
            plist_array_append_item(names, PlistNode::newString(name));
            for (const char* const ancestor : ancestors)
                plist_array_append_item(names, PlistNode::newString(ancestor));
            const plist_t node = plist_new_dict();
            plist_dict_set_item(node, "$classname", PlistNode::newString(name));
            plist_dict_set_item(node, "$classes", names);
            place->second = add(node);
        }
        return place->second;
    }

    PlistNode::Owned m_objects{plist_new_array()};
    std::uint64_t m_count = 0;
    std::map<std::string, std::uint64_t> m_strings;
    std::map<std::string, std::uint64_t> m_classes;
};

class Reader
{
public:
    explicit Reader(std::string_view data) : m_whole(PlistNode::fromData(data)) {}

    std::optional<std::vector<PropertyList::ArchivedObject>> objects()
    {
        if (PlistNode::string(PlistNode::item(m_whole.get(), "$archiver")) != archiverName)
            return std::nullopt;
        m_objects = elements(PlistNode::item(m_whole.get(), "$objects"));
        const plist_t root = followed(PlistNode::item(PlistNode::item(m_whole.get(), "$top"), "root"));
        const plist_t list = PlistNode::item(root, "NS.objects");
        if (!PLIST_IS_ARRAY(list))
            return std::nullopt;
        std::vector<PropertyList::ArchivedObject> read;
        for (const plist_t element : elements(list)) {
            auto object = objectOf(followed(element));
            if (!object)
                return std::nullopt;
            read.push_back(std::move(*object));
        }
        return read;
    }

private:
    /// What a reference leads to; null where there is no such place.
    [[nodiscard]] plist_t followed(plist_t reference) const
    {
        const auto place = PlistNode::uid(reference);
        return place && *place < m_objects.size() ? m_objects[*place] : nullptr;
    }

    static std::vector<plist_t> elements(plist_t array)
    {
        std::vector<plist_t> found;
        if (!PLIST_IS_ARRAY(array))
            return found;
        plist_array_iter started = nullptr;
        plist_array_new_iter(array, &started);
        const std::unique_ptr<void, void (*)(void*)> iterator(started, std::free);
        for (;;) {
            plist_t element = nullptr;
            plist_array_next_item(array, iterator.get(), &element);
            if (!element)
                return found;
            found.push_back(element);
        }
    }

    [[nodiscard]] std::optional<PropertyList::ArchivedObject> objectOf(plist_t node) const
    {
        const auto name =
            PlistNode::string(PlistNode::item(followed(PlistNode::item(node, "$class")), "$classname"));
        if (!name)
            return std::nullopt;
        PropertyList::ArchivedObject object;
        object.className = *name;
        plist_dict_iter started = nullptr;
        plist_dict_new_iter(node, &started);
        const std::unique_ptr<void, void (*)(void*)> iterator(started, std::free);
        for (;;) {
            char* key = nullptr;
            plist_t reference = nullptr;
            plist_dict_next_item(node, iterator.get(), &key, &reference);
            const std::unique_ptr<char, void (*)(void*)> ownedKey(key, std::free);
            if (!reference)
                return object;
            const plist_t value = followed(reference);
            if (const auto text = PlistNode::string(value))
                object.strings[key] = *text;
            else if (const auto seconds = PlistNode::real(PlistNode::item(value, "NS.time")))
                object.dates[key] = ReferenceDate::dateFromSeconds(*seconds);
        }
    }

    PlistNode::Owned m_whole;
    std::vector<plist_t> m_objects;
};

} // namespace

std::string PropertyList::keyedArchive(const std::vector<ArchivedObject>& objects)
{
    return Writer().archive(objects);
}

std::optional<std::vector<PropertyList::ArchivedObject>>
PropertyList::objectsFromKeyedArchive(std::string_view data)
{
    return Reader(data).objects();
}

} // namespace virlo
