// What the ad library reads of a VAST document, and how it merges wrappers: see docs/vast.md.

import {isText, parseXML, XMLNode} from './xml';

export interface Creative {
  id: string;
  sequence: number;
  duration: number; // seconds
  tracking: Map<string, Set<string>> | null; // event → URLs
  media: string[];
}

export interface Ad {
  id: string;
  title: string;
  isWrapper: boolean;
  tag: string | null; // the next document's URL
  impressions: string[];
  creatives: Creative[];
}

function elements(node: XMLNode | null, ...path: string[]): XMLNode[] {
  let found = node ? [node] : [];
  for (const name of path)
    found = found.flatMap(
      (parent) => parent.children.filter((child): child is XMLNode => !isText(child) && child.name === name));
  return found;
}

/** The texts in CDATA sections: URLs are read from nowhere else. */
function urls(nodes: XMLNode[]): string[] {
  return nodes
    .flatMap((node) => node.children)
    .filter((child) => isText(child) && child.isCDATA)
    .map((child) => (child as {text: string}).text.trim())
    .filter((text) => text && !/[\s\x00-\x1f]/.test(text));
}

function attribute(node: XMLNode, name: string): string {
  return node.attributes.find(([key]) => key === name)?.[1] ?? '';
}

function number(text: string): number {
  return Number(/^\d+/.exec(text)?.[0] ?? 0);
}

/** From the left: hours, minutes, seconds. */
function seconds(text: string): number {
  const [hours, minutes, rest] = text.trim().split(':').map(number);
  return (hours || 0) * 3600 + (minutes || 0) * 60 + (rest || 0);
}

function readCreative(node: XMLNode): Creative {
  const tracking = new Map<string, Set<string>>();
  for (const element of elements(node, 'Linear', 'TrackingEvents', 'Tracking'))
    for (const url of urls([element])) {
      const event = attribute(element, 'event');
      tracking.set(event, (tracking.get(event) ?? new Set()).add(url));
    }
  const duration = elements(node, 'Linear', 'Duration').flatMap((element) => element.children)
    .filter((child) => isText(child) && !child.isCDATA).pop() as {text: string} | undefined;
  return {
    id: attribute(node, 'AdID'),
    sequence: number(attribute(node, 'sequence')),
    duration: duration ? seconds(duration.text) : 0,
    tracking: tracking.size ? tracking : null,
    media: urls(elements(node, 'Linear', 'MediaFiles', 'MediaFile')),
  };
}

/** Null where the document is not well formed or no VAST document. */
export function readVAST(document: string): Ad[] | null {
  const root = parseXML(document);
  if (root?.name !== 'VAST')
    return null;
  return elements(root, 'Ad').map((ad) => {
    const wrapper = elements(ad, 'Wrapper');
    const body = wrapper[0] ?? elements(ad, 'InLine')[0] ?? null;
    const title = elements(body, 'AdTitle').flatMap((element) => element.children).pop();
    return {
      id: attribute(ad, 'id'),
      title: title && isText(title) ? title.text : '',
      isWrapper: wrapper.length > 0,
      tag: urls(elements(body, 'VASTAdTagURI')).pop() ?? null,
      impressions: urls(elements(body, 'Impression')),
      creatives: elements(body, 'Creatives', 'Creative').map(readCreative),
    };
  });
}

function merge(ad: Ad, wrapper: Ad): Ad {
  const creatives = ad.creatives.map((creative) => ({...creative}));
  for (const source of wrapper.creatives) {
    const target = creatives.find((creative) => creative.sequence === source.sequence);
    if (!target) {
      creatives.push(source);
      continue;
    }
    target.media = [...new Set([...target.media, ...source.media])];
    target.duration = source.duration; // the wrapper's always wins
    if (source.tracking && target.tracking) {
      target.tracking = new Map(target.tracking);
      for (const [event, addresses] of source.tracking)
        target.tracking.set(event, new Set([...(target.tracking.get(event) ?? []), ...addresses]));
    }
  }
  return {...ad, impressions: [...ad.impressions, ...wrapper.impressions], creatives};
}

const mostDocuments = 200;

/** The ad that the library plays, its wrappers merged. `load` gives a document by its URL, or null where it has not come. */
export function resolve(document: string, load: (url: string) => string | null): {ad: Ad | null; chain: Ad[]} {
  const chain: Ad[] = [];
  const first = (text: string): Ad | null => {
    let ads = readVAST(text) ?? [];
    let played = ads[0] ?? null;
    for (const ad of ads) {
      if (chain.length >= mostDocuments)
        break;
      chain.push(ad);
      const next = ad.isWrapper && ad.tag ? load(ad.tag) : null;
      const inner = next === null ? null : first(next);
      if (inner)
        played = merge(inner, ad); // every resolved wrapper replaces the first ad
    }
    return played;
  };
  return {ad: first(document), chain};
}
