#include "VIRLOVASTPath.h"

VIRLOVASTPath::Node VIRLOVASTPath::child(std::string_view name) const
{
    switch (current()) {
    case Node::Document:
        return name == "VAST" ? Node::VAST : Node::Other;
    case Node::VAST:
        return name == "Ad" ? Node::Ad : Node::Other;
    case Node::Ad:
        // "Wrapper" turns the ad, which starts as inline, into a wrapper; from then on "InLine" is unknown in
        // it.
        return name == "Wrapper" || (name == "InLine" && !m_isWrapper) ? Node::Content : Node::Other;
    case Node::Content:
        if (name == "Impression")
            return Node::Impression;
        if (name == "Creatives")
            return Node::Creatives;
        if (name == "AdTitle")
            return Node::AdTitle;
        if (name == "AdSystem")
            return Node::AdSystem;
        return name == "VASTAdTagURI" ? Node::VASTAdTagURI : Node::Other;
    case Node::Creatives:
        return name == "Creative" ? Node::Creative : Node::Other;
    case Node::Creative:
        return name == "Linear" ? Node::Linear : Node::Other;
    case Node::Linear:
        if (name == "TrackingEvents")
            return Node::TrackingEvents;
        if (name == "MediaFiles")
            return Node::MediaFiles;
        return name == "Duration" ? Node::Duration : Node::Other;
    case Node::TrackingEvents:
        return name == "Tracking" ? Node::Tracking : Node::Other;
    case Node::MediaFiles:
        return name == "MediaFile" ? Node::MediaFile : Node::Other;
    default:
        return Node::Other;
    }
}

VIRLOVASTPath::Node VIRLOVASTPath::start(std::string_view name)
{
    const Node node = child(name);
    if (node == Node::Other) {
        ++m_depthBelowKnown;
        return node;
    }
    m_nodes[++m_depth] = node;
    if (node == Node::Ad)
        m_isWrapper = false;
    else if (node == Node::Content)
        m_isWrapper = name == "Wrapper";
    return node;
}
