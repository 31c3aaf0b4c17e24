// The lines in which two texts differ.

export interface DiffLine {
  mark: ' ' | '+' | '-';
  text: string;
}

const mostLines = 2000;

/** By the longest common subsequence of their lines; of very long texts the first lines. */
export function diff(before: string, after: string): DiffLine[] {
  const one = before.split('\n').slice(0, mostLines);
  const other = after.split('\n').slice(0, mostLines);
  const lengths = Array.from({length: one.length + 1}, () => new Uint16Array(other.length + 1));
  for (let i = one.length - 1; i >= 0; --i)
    for (let j = other.length - 1; j >= 0; --j)
      lengths[i][j] = one[i] === other[j] ? lengths[i + 1][j + 1] + 1 : Math.max(lengths[i + 1][j], lengths[i][j + 1]);
  const lines: DiffLine[] = [];
  let i = 0;
  let j = 0;
  while (i < one.length || j < other.length) {
    if (i < one.length && j < other.length && one[i] === other[j]) {
      lines.push({mark: ' ', text: one[i]});
      ++i;
      ++j;
    } else if (j < other.length && (i === one.length || lengths[i][j + 1] > lengths[i + 1][j])) {
      lines.push({mark: '+', text: other[j++]});
    } else {
      lines.push({mark: '-', text: one[i++]});
    }
  }
  return lines;
}
