import {h} from 'preact';
import {isText, parseXML, XMLNode, XMLText} from './xml';

/** JSON as a tree; large lists and deep objects are folded. */
export function JSONTree({value, name, depth = 0}: {value: unknown; name?: string; depth?: number; key?: string}): JSX.Element {
  const label = name === undefined ? null : <span class="name">{name}: </span>;
  if (value === null || typeof value !== 'object')
    return <div class="leaf">{label}<span class={`value ${typeof value}`}>{JSON.stringify(value)}</span></div>;
  const members = Object.entries(value as object);
  const brackets = Array.isArray(value) ? '[]' : '{}';
  return (
    <details open={depth < 3 && members.length <= 40}>
      <summary>{label}<span class="count">{brackets[0]}{members.length}{brackets[1]}</span></summary>
      {members.map(([key, member]) => <JSONTree key={key} name={key} value={member} depth={depth + 1} />)}
    </details>
  );
}

export function XMLTree({document}: {document: string}): JSX.Element {
  const root = parseXML(document);
  return root ? <XMLElement node={root} depth={0} /> : <p class="problem">The document is not well formed.</p>;
}

function XMLElement({node, depth}: {node: XMLNode | XMLText; depth: number; key?: string}): JSX.Element {
  if (isText(node))
    return <div class="leaf"><span class={node.isCDATA ? 'value cdata' : 'value'}>{node.text.trim()}</span></div>;
  const attributes = node.attributes.map(([name, value]) => (
    <span key={name}> <span class="name">{name}</span>=<span class="value">"{value}"</span></span>
  ));
  const only = node.children.length === 1 ? node.children[0] : null;
  if (node.children.length === 0 || (only && isText(only)))
    return (
      <div class="leaf">
        <span class="element">{node.name}</span>{attributes}
        {only && isText(only) ? <span class={only.isCDATA ? 'value cdata' : 'value'}> {only.text.trim()}</span> : null}
      </div>
    );
  return (
    <details open={depth < 7}>
      <summary><span class="element">{node.name}</span>{attributes}</summary>
      {node.children.map((child, index) => <XMLElement key={String(index)} node={child} depth={depth + 1} />)}
    </details>
  );
}
