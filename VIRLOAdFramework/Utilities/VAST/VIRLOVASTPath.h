#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

/// Where a reader stands in a VAST document, and what an element means there. Elements are known by their
/// whole path from the root, name by name in exact spelling. Below the first unknown element only the depth
/// is counted, so a path is as small in a deep document as in a flat one.
class VIRLOVASTPath
{
public:
    /// `Other` stands for every path that means nothing.
    enum class Node : unsigned char {
        Document,
        VAST,
        Ad,
        Content, ///< "InLine" or "Wrapper", whichever the ad is
        AdSystem,
        AdTitle,
        Impression,
        VASTAdTagURI,
        Creatives,
        Creative,
        Linear,
        Duration,
        TrackingEvents,
        Tracking,
        MediaFiles,
        MediaFile,
        Other
    };

    Node start(std::string_view name);

    void end()
    {
        if (m_depthBelowKnown > 0)
            --m_depthBelowKnown;
        else
            --m_depth;
    }

    [[nodiscard]] Node current() const { return m_depthBelowKnown > 0 ? Node::Other : m_nodes[m_depth]; }

    /// The innermost element of meaning, which may hold unknown ones that still stand open.
    [[nodiscard]] Node innermostKnown() const { return m_nodes[m_depth]; }

    /// Whether the ad begun last has turned out to be a wrapper.
    [[nodiscard]] bool isInWrapper() const noexcept { return m_isWrapper; }

    // Text is taken in one form only, by element. That split is deliberate: documents are written to it.

    /// The title and all addresses.
    [[nodiscard]] static constexpr bool takesCDATA(Node node)
    {
        return node == Node::AdTitle || node == Node::Impression || node == Node::VASTAdTagURI ||
               node == Node::Tracking || node == Node::MediaFile;
    }

    /// The ad system and the duration.
    [[nodiscard]] static constexpr bool takesCharacters(Node node)
    {
        return node == Node::AdSystem || node == Node::Duration;
    }

    /// The attributes that are read of an element.
    [[nodiscard]] static std::span<const char* const> attributes(Node node);

private:
    [[nodiscard]] Node child(std::string_view name) const;

    std::array<Node, 9> m_nodes{Node::Document};
    std::size_t m_depth = 0;
    std::size_t m_depthBelowKnown = 0;
    bool m_isWrapper = false;
};
