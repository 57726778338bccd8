// Reads the text of a record, without executing any of it.
//
// The writer puts one thing on a line, so the reader goes by lines: a line that it does not understand is reported by
// its number and left out, and the writer's indentation tells where the rest belongs.
import { RecordBuilder } from './builder';
import { bytesToText } from './bytes';
import { TimesReader } from './times_reader';
import { NoRecord, type RawRecord } from './record';

const longestLine = 16 << 20;
const structure = /^[ \t]*(?:time: \[|blocks: \[$|\{$|\},?$|\],?$)/;
const lineFeed = 10;
const space = 32;
const tab = 9;
const carriageReturn = 13;
const empty = new Uint8Array(0);

/** A thread or a block between its brackets. */
interface Open {
  indent: number;
  thread: number;
  block: number; // -1 for a thread
  named: boolean;
}

export class TextReader {
  private readonly builder = new RecordBuilder();
  private readonly times = new TimesReader(this.builder);
  private readonly open: Open[] = [];
  private rest: Uint8Array = empty;
  private first = true;
  private firstLine: string | undefined;
  private line = 1;
  private strange = 0;
  private skipping = false; // a line that is too long
  private headerSeen = false;
  private endSeen = false;
  private indented = false; // as the writer does it; otherwise only the brackets tell
  private unfinishedName: { line: number; indent: number; parts: string[] } | undefined;

  /** The next bytes of the file. Throws NoRecord as soon as it is clear that this is none. */
  push(chunk: Uint8Array): void {
    let at = 0;
    // What was left is read with no more of the chunk than is needed to end its line: the chunk is not copied.
    for (
      let length = Math.max(1024, this.rest.length);
      this.rest.length > 0 && at < chunk.length;
      length *= 2
    ) {
      const piece = chunk.subarray(at, at + length);
      const data = new Uint8Array(this.rest.length + piece.length);
      data.set(this.rest);
      data.set(piece, this.rest.length);
      const end = this.read(data, false);
      if (end < this.rest.length) {
        this.rest = data.subarray(end);
        at += piece.length;
      } else {
        at += end - this.rest.length;
        this.rest = empty;
      }
    }
    if (at === chunk.length) return;
    const data = chunk.subarray(at);
    this.rest = new Uint8Array(data.subarray(this.read(data, false))); // a copy: the caller may fill the part anew
  }

  finish(): RawRecord {
    const at = this.read(this.rest, true);
    if (at < this.rest.length) this.readLine(this.rest, at, this.rest.length);
    if (this.first) throw new NoRecord('The file is empty.');
    if (!this.headerSeen && this.builder.intervals === 0) throw this.noRecord();
    if (this.unfinishedName) this.giveUpName();
    if (this.open.length > 0 || !this.endSeen)
      this.report(this.line, 'the file ends before the record does: it was cut, or never written to its end');
    return this.builder.finish();
  }

  private report(line: number, what: string): void {
    this.builder.report(`line ${line}`, what);
  }

  private noRecord(): NoRecord {
    const seen = this.firstLine ?? '';
    return new NoRecord(
      `This is no profile record: it should begin with "var threads = [", but it begins with "${shortened(seen)}".`,
    );
  }

  /** Reads as many whole lines as there are and gives where the rest begins. */
  private read(data: Uint8Array, last: boolean): number {
    let at = 0;
    if (this.first && data.length > 0) {
      if (data.length < 3 && !last) return 0;
      this.first = false;
      if ((data[0] === 0xff && data[1] === 0xfe) || (data[0] === 0xfe && data[1] === 0xff))
        throw new NoRecord('This is no profile record: the file is UTF-16, a record is plain bytes.');
      if (data[0] === 0xef && data[1] === 0xbb && data[2] === 0xbf) at = 3;
    }
    while (at < data.length) {
      if (this.times.active) {
        at = this.times.read(data, at, last);
        this.line = this.times.line;
        if (this.times.active) return at;
        continue;
      }
      if (!this.skipping && this.startsTimes(data, at)) {
        if (this.unfinishedName) this.giveUpName();
        at = this.beginTimes(data, at);
        continue;
      }
      const end = data.indexOf(lineFeed, at);
      if (end < 0 && data.length - at > longestLine) {
        if (!this.skipping) this.damaged('a line without end');
        this.skipping = true;
        return data.length;
      }
      if (end < 0) return at;
      if (!this.skipping) this.readLine(data, at, end);
      this.skipping = false;
      ++this.line;
      at = end + 1;
    }
    return at;
  }

  private startsTimes(data: Uint8Array, at: number): boolean {
    while (data[at] === space || data[at] === tab) ++at;
    const opening = 'time: [';
    for (let i = 0; i < opening.length; ++i) if (data[at + i] !== opening.charCodeAt(i)) return false;
    return true;
  }

  private beginTimes(data: Uint8Array, at: number): number {
    const indent = indentation(data, at);
    const owner = this.ownerOfLine(indent, false);
    if (owner.block < 0) owner.block = this.builder.addBlock(owner.thread, -1);
    this.times.begin(owner.block, this.line);
    return at + indent + 'time: ['.length;
  }

  private readLine(data: Uint8Array, from: number, to: number): void {
    if (data[to - 1] === carriageReturn && to > from) --to;
    if (this.unfinishedName && this.continueName(bytesToText(data, from, to))) return;
    const indent = indentation(data, from);
    const text = bytesToText(data, from + indent, to).trimEnd();
    if (text === '') return;
    this.firstLine ??= text;
    if (indent > 0) this.indented = true;
    if (text.startsWith("name: '")) return this.readName(indent, bytesToText(data, from + indent, to));
    switch (text) {
      case 'var threads = [':
        this.headerSeen = true;
        return;
      case '{':
        return this.openBracket(indent);
      case '}':
      case '},':
        return this.closeBracket(indent);
      case 'blocks: [':
      case '],':
        return; // the curly brackets and the indentation say as much
      case ']':
      case '];':
        this.endSeen = true;
        return;
      default:
        this.damaged(`not understood and left out: "${shortened(text)}"`);
    }
  }

  private damaged(what: string): void {
    this.report(this.line, what);
    if (++this.strange >= 1000 && !this.headerSeen && this.builder.intervals === 0) throw this.noRecord();
  }

  private get top(): Open | undefined {
    return this.open[this.open.length - 1];
  }

  private openBracket(indent: number): void {
    while (this.indented && this.top && this.top.indent >= indent) this.closeLost();
    if (!this.top && indent > 0) {
      this.report(this.line, 'an opening bracket is missing before this line');
      this.add(0);
    }
    this.add(indent);
  }

  private add(indent: number): Open {
    const parent = this.top;
    const added: Open = parent
      ? {
          indent,
          thread: parent.thread,
          block: this.builder.addBlock(parent.thread, parent.block),
          named: false,
        }
      : { indent, thread: this.builder.addThread(), block: -1, named: false };
    this.open.push(added);
    return added;
  }

  private closeBracket(indent: number): void {
    while (this.indented && this.top && this.top.indent > indent) this.closeLost();
    if (this.top && (!this.indented || this.top.indent === indent)) this.open.pop();
    else this.report(this.line, 'a closing bracket without its opening one');
  }

  private closeLost(): void {
    this.report(this.line, 'a closing bracket is missing before this line');
    this.open.pop();
  }

  /** The thread or block that a line of `name` or `time` belongs to; made if its opening bracket was lost. */
  private ownerOfLine(indent: number, isName: boolean): Open {
    while (this.indented && this.top && this.top.indent + 2 > indent) this.closeLost();
    const top = this.top;
    const lost = this.indented && top && (top.indent + 2 < indent || (isName && top.named && top.block >= 0));
    if (top && !lost) return top;
    this.report(this.line, 'an opening bracket is missing before this line');
    if (top && top.indent + 2 === indent) this.open.pop();
    if (!this.top) this.add(0);
    return indent > 2 ? this.add(indent - 2) : this.top!;
  }

  private readName(indent: number, text: string): void {
    const owner = this.ownerOfLine(indent, true);
    const name = text.slice("name: '".length).trimEnd();
    if (owner.block < 0) {
      owner.named = true;
      this.builder.threads[owner.thread] = name.replace(/',?$/, '');
      if (!/',?$/.test(name)) this.report(this.line, 'a name without its end');
    } else if (name.endsWith("',")) this.setName(owner, name.slice(0, -2));
    else this.unfinishedName = { line: this.line, indent, parts: [text.slice("name: '".length)] };
  }

  private setName(owner: Open, name: string): void {
    owner.named = true;
    this.builder.setName(owner.block, name);
  }

  /** A name with line breaks goes on over lines. Gives whether the line was part of it. */
  private continueName(line: string): boolean {
    const { parts } = this.unfinishedName!;
    if (structure.test(line)) {
      this.giveUpName();
      return false;
    }
    if (line.endsWith("',")) {
      this.setName(this.top!, [...parts, line.slice(0, -2)].join('\n'));
      this.unfinishedName = undefined;
    } else parts.push(line);
    return true;
  }

  private giveUpName(): void {
    const { line, parts } = this.unfinishedName!;
    this.unfinishedName = undefined;
    this.report(line, 'a name without its end');
    this.setName(this.top!, parts[0]!);
  }
}

function indentation(data: Uint8Array, at: number): number {
  let indent = 0;
  while (data[at + indent] === space || data[at + indent] === tab) ++indent;
  return indent;
}

function shortened(text: string): string {
  const printable = text.replace(/[^\x20-\x7e]/g, '\u00b7');
  return printable.length > 60 ? printable.slice(0, 60) + '\u2026' : printable;
}

/** Reads a whole record that is in memory. */
export function readText(data: Uint8Array): RawRecord {
  const reader = new TextReader();
  reader.push(data);
  return reader.finish();
}
