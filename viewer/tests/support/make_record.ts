// Texts of records, byte for byte as the library writes them, for tests and measurements.

export interface BlockText {
  name: string;
  time: [begin: number, end: number][];
  blocks?: BlockText[];
}

export interface ThreadText {
  id: number;
  blocks?: BlockText[];
}

/** A number as C++ writes it: six digits, no zeros at the end. */
export function sixDigits(value: number): string {
  const [mantissa, exponent] = value.toExponential(5).split('e') as [string, string];
  const power = Number(exponent);
  if (value !== 0 && (power < -4 || power >= 6)) {
    const digits = mantissa.replace(/\.?0+$/, '');
    return `${digits}e${power < 0 ? '-' : '+'}${String(Math.abs(power)).padStart(2, '0')}`;
  }
  return String(Number(value.toPrecision(6)));
}

export function recordText(threads: readonly ThreadText[], lineEnd = '\r\n'): string {
  const lines = ['var threads = ['];
  for (const thread of threads) {
    lines.push('{');
    writeBlocks(thread.blocks ?? [], '  ', lines);
    lines.push(`  name: 'Thread ${thread.id}'`, '},');
  }
  lines.push(']');
  return lines.join(lineEnd) + lineEnd;
}

function writeBlocks(blocks: readonly BlockText[], indent: string, lines: string[]): void {
  if (blocks.length === 0) return;
  lines.push(`${indent}blocks: [`);
  for (const block of blocks) {
    lines.push(`${indent}  {`, `${indent}    name: '${block.name}',`);
    writeBlocks(block.blocks ?? [], indent + '    ', lines);
    const time = block.time.map(([b, e]) => `{b: ${sixDigits(b)}, e: ${sixDigits(e)}},`).join('');
    lines.push(`${indent}    time: [${time}]`, `${indent}  },`);
  }
  lines.push(`${indent}],`);
}

/** One block inside the other, without the indentation, which would be most of the file. */
export function deepRecord(levels: number): string {
  const before = "blocks: [\n{\nname: 'n',\n".repeat(levels);
  const after = 'time: [{b: 0, e: 1},]\n},\n],\n'.repeat(levels);
  return `var threads = [\n{\n${before}${after}name: 'Thread 4'\n},\n]\n`;
}

/**
 * A record of `intervals` intervals, evenly on `threads` threads, as a busy server would leave it: requests of many
 * lengths with four levels inside, some idle time between them. The same for the same numbers.
 */
export function largeRecord(intervals: number, threads: number): string {
  let state = 12345;
  const random = () => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return state / 2 ** 32;
  };
  const perThread = Math.floor(intervals / threads);
  const made: ThreadText[] = [];
  for (let thread = 0; thread < threads; ++thread) {
    const root = new Map<string, Building>();
    let left = perThread;
    let now = thread * 0.01;
    const run = (level: Map<string, Building>, depth: number, length: number) => {
      const name = `${['request', 'parse', 'query', 'render', 'write'][depth]} ${Math.floor(random() * (depth + 2))}`;
      let building = level.get(name);
      if (!building) level.set(name, (building = { time: [], inner: new Map() }));
      const begin = now;
      --left;
      if (depth < 4) {
        const parts = 1 + Math.floor(random() * 3);
        for (let part = 0; part < parts && left > 0; ++part) {
          now += (length / parts) * 0.1 * random();
          run(building.inner, depth + 1, (length / parts) * 0.8);
        }
      }
      now = Math.max(now, begin + length * (0.5 + 0.5 * random()));
      building.time.push([begin, now]);
    };
    while (left > 0) {
      run(root, 0, 0.2 + 3 * random() ** 4);
      now += 0.3 * random();
    }
    made.push({ id: 4 * (thread + 1), blocks: finish(root) });
  }
  return recordText(made);
}

interface Building {
  time: [number, number][];
  inner: Map<string, Building>;
}

function finish(level: Map<string, Building>): BlockText[] {
  return [...level].map(([name, { time, inner }]) => ({ name, time, blocks: finish(inner) }));
}
