#pragma once

#include <array>
#include <cstddef>
#include <string_view>

/// The path from the root of a VAST document to the current element. Elements are recognised by their whole
/// path, each name in exact spelling. Below the first unknown element only the depth is counted, so deep
/// nesting takes no memory.
class VIRLOVASTPath
{
public:
    /// `Other` is every unknown path.
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

    /// Whether the last ad is a wrapper.
    [[nodiscard]] bool isInWrapper() const noexcept { return m_isWrapper; }

    // Each element's text is read in one form only. That split is deliberate: documents are written for it.

    /// The title and all URLs.
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

private:
    [[nodiscard]] Node child(std::string_view name) const;

    std::array<Node, 9> m_nodes{Node::Document};
    std::size_t m_depth = 0;
    std::size_t m_depthBelowKnown = 0;
    bool m_isWrapper = false;
};
