#include "MemoryCache.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>

namespace virlo::test
{

namespace
{

class MemoryCacheTest : public testing::Test
{
protected:
    void set(char key, std::size_t cost = 1) { m_cache.set(key, std::string(1, key), cost); }

    /// The cached keys. Changes the order of use, so it comes last.
    std::string keys()
    {
        std::string present;
        for (const char key : std::string_view("abcdefgh")) {
            if (m_cache.get(key) == std::string(1, key))
                present += key;
        }
        return present;
    }

    MemoryCache<char, std::string> m_cache;
};

TEST_F(MemoryCacheTest, LeastRecentlyUsedGoesFirstBeyondTheCount)
{
    m_cache.setCountLimit(3);
    for (const char key : {'a', 'b', 'c'})
        set(key);
    EXPECT_TRUE(m_cache.get('a')); // used: b is now the oldest
    set('d');
    set('c'); // written again: a is now the oldest
    set('e');
    EXPECT_EQ(keys(), "cde");
}

TEST_F(MemoryCacheTest, CostsAreCountedThroughReplacingAndRemoving)
{
    m_cache.setCostLimit(100);
    set('a', 60);
    set('a', 10);
    set('b', 50);
    set('c', 40); // full
    m_cache.remove('b');
    m_cache.remove('b');
    set('d', 50); // full again
    m_cache.setCostLimit(95);
    set('d', 96); // too large: only the entry that it replaces goes
    EXPECT_EQ(keys(), "c");
}

TEST(MemoryCache, DestructorOfAValueMayUseTheCache)
{
    MemoryCache<int, std::shared_ptr<void>> cache;
    cache.setCountLimit(1);
    bool found = false;
    cache.set(1, std::shared_ptr<void>(nullptr, [&](void*) { found = cache.get(2).has_value(); }), 1);
    cache.set(2, nullptr, 1);
    EXPECT_TRUE(found);
}

} // namespace

} // namespace virlo::test
