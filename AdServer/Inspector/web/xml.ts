// A small reader of XML: enough to show a document as a tree and to find what the ad library reads of a VAST document.

export interface XMLNode {
  name: string;
  attributes: [string, string][];
  children: (XMLNode | XMLText)[];
}

export interface XMLText {
  text: string;
  isCDATA: boolean;
}

const entities: Record<string, string> = {amp: '&', lt: '<', gt: '>', quot: '"', apos: "'"};

function decoded(text: string): string {
  return text.replace(/&(#x[0-9a-f]+|#\d+|\w+);/gi, (whole, name: string) => {
    if (name[0] !== '#')
      return entities[name] ?? whole;
    const code = name[1].toLowerCase() === 'x' ? parseInt(name.slice(2), 16) : parseInt(name.slice(1), 10);
    return code <= 0x10ffff ? String.fromCodePoint(code) : whole;
  });
}

export function isText(node: XMLNode | XMLText): node is XMLText {
  return 'text' in node;
}

/** The root element; null where the document is not well formed. */
export function parseXML(document: string): XMLNode | null {
  const token = /<!\[CDATA\[([\s\S]*?)\]\]>|<!--[\s\S]*?-->|<\?[\s\S]*?\?>|<!DOCTYPE[^>[]*(?:\[[\s\S]*?\])?\s*>|<\/([^\s>]+)\s*>|<([^\s/>!?]+)((?:\s+[^\s=>/]+\s*=\s*(?:"[^"]*"|'[^']*'))*)\s*(\/?)>|([^<]+)/y;
  const top: XMLNode = {name: '', attributes: [], children: []};
  const open = [top];
  while (token.lastIndex < document.length) {
    const match = token.exec(document);
    if (!match)
      return null;
    const parent = open[open.length - 1];
    if (match[1] !== undefined) {
      parent.children.push({text: match[1], isCDATA: true});
    } else if (match[2] !== undefined) {
      if (open.length < 2 || open.pop()!.name !== match[2])
        return null;
    } else if (match[3] !== undefined) {
      const attributes = [...match[4].matchAll(/([^\s=]+)\s*=\s*(?:"([^"]*)"|'([^']*)')/g)].map(
        (attribute): [string, string] => [attribute[1], decoded(attribute[2] ?? attribute[3])]);
      const node: XMLNode = {name: match[3], attributes, children: []};
      parent.children.push(node);
      if (!match[5])
        open.push(node);
    } else if (match[6] !== undefined && match[6].trim()) {
      if (open.length < 2)
        return null;
      parent.children.push({text: decoded(match[6]), isCDATA: false});
    }
  }
  const roots = top.children.filter((node): node is XMLNode => !isText(node));
  return open.length === 1 && roots.length === 1 ? roots[0] : null;
}
