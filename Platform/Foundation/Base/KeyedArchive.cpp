#include "KeyedArchive.h"

#include "PlistNode.h"
#include "ReferenceDate.h"

#include <initializer_list>

namespace virlo
{

namespace
{

constexpr std::uint64_t archiverVersion = 100000;

/// "$objects" lists every object once, the first one standing for null; references are indexes into that
/// list. "$top" refers to the root object.
class Writer
{
public:
    Writer() { add(plist_new_string("$null")); }

    std::string data(const std::vector<KeyedArchive::Object>& objects)
    {
        // The root gets its index before its elements exist.
        const plist_t root = plist_new_dict();
        const auto rootIndex = add(root);
        const plist_t elements = plist_new_array();
        for (const auto& object : objects)
            plist_array_append_item(elements, plist_new_uid(addObject(object)));
        plist_dict_set_item(root, "NS.objects", elements);
        plist_dict_set_item(root, "$class",
                            plist_new_uid(indexOfClass("NSMutableArray", {"NSArray", "NSObject"})));

        const PlistNode archive(plist_new_dict());
        const plist_t top = plist_new_dict();
        plist_dict_set_item(top, "root", plist_new_uid(rootIndex));
        plist_dict_set_item(archive.get(), "$version", plist_new_uint(archiverVersion));
        plist_dict_set_item(archive.get(), "$archiver", plist_new_string("NSKeyedArchiver"));
        plist_dict_set_item(archive.get(), "$top", top);
        plist_dict_set_item(archive.get(), "$objects", m_objects.release());
        char* bytes = nullptr;
        std::uint32_t length = 0;
        plist_to_bin(archive.get(), &bytes, &length);
        const std::unique_ptr<char, void (*)(char*)> owned(bytes, plist_to_bin_free);
        return bytes ? std::string(bytes, length) : std::string();
    }

private:
    std::uint64_t add(plist_t object)
    {
        plist_array_append_item(m_objects.get(), object);
        return m_count++;
    }

    std::uint64_t addObject(const KeyedArchive::Object& object)
    {
        const plist_t node = plist_new_dict();
        const auto index = add(node);
        for (const auto& [key, text] : object.strings)
            plist_dict_set_item(node, key.c_str(), plist_new_uid(add(plist_new_string(text.c_str()))));
        for (const auto& [key, date] : object.dates)
            plist_dict_set_item(node, key.c_str(), plist_new_uid(addDate(date)));
        plist_dict_set_item(node, "$class", plist_new_uid(indexOfClass(object.className, {"NSObject"})));
        return index;
    }

    std::uint64_t addDate(Date date)
    {
        const plist_t node = plist_new_dict();
        const auto index = add(node);
        plist_dict_set_item(node, "NS.time", plist_new_real(ReferenceDate::secondsFromDate(date)));
        plist_dict_set_item(node, "$class", plist_new_uid(indexOfClass("NSDate", {"NSObject"})));
        return index;
    }

    std::uint64_t indexOfClass(const std::string& name, std::initializer_list<const char*> ancestors)
    {
        const auto [known, isNew] = m_classes.try_emplace(name, 0);
        if (isNew) {
            const plist_t names = plist_new_array();
            plist_array_append_item(names, plist_new_string(name.c_str()));
            for (const char* const ancestor : ancestors)
                plist_array_append_item(names, plist_new_string(ancestor));
            const plist_t node = plist_new_dict();
            plist_dict_set_item(node, "$classname", plist_new_string(name.c_str()));
            plist_dict_set_item(node, "$classes", names);
            known->second = add(node);
        }
        return known->second;
    }

    PlistNode m_objects{plist_new_array()};
    std::uint64_t m_count = 0;
    std::map<std::string, std::uint64_t> m_classes;
};

} // namespace

std::string KeyedArchive::data(const std::vector<Object>& objects)
{
    return Writer().data(objects);
}

} // namespace virlo
