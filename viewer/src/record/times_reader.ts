// Reads what follows "time: [": nearly all bytes of a record, so it goes from byte to byte and makes no strings. A
// line may be hundreds of megabytes long and come in parts.
import type { RecordBuilder } from './builder';

const [lineFeed, carriageReturn, space, comma, minus, plus, point, colon] = [10, 13, 32, 44, 45, 43, 46, 58];
const [zero, nine, letterB, letterE, capitalE, closingBracket, opening, closing] = [
  48, 57, 98, 101, 69, 93, 123, 125,
];

/** No interval is longer: fewer bytes than this before the end of a part are left for the next one. */
const longestInterval = 96;

const powers = Array.from({ length: 23 }, (_, power) => Number(`1e${power}`));

export class TimesReader {
  active = false;
  line = 0;
  private block = -1;
  private ended = false; // the closing bracket was read, the line end not yet
  private data: Uint8Array = new Uint8Array(0);
  private at = 0;

  constructor(private readonly builder: RecordBuilder) {}

  begin(block: number, line: number): void {
    this.active = true;
    this.ended = false;
    this.block = block;
    this.line = line;
  }

  /** Reads to the end of the line, or of what can be read of it yet, and gives where it stopped. */
  read(data: Uint8Array, at: number, last: boolean): number {
    this.data = data;
    this.at = at;
    while (this.at < data.length) {
      if (!last && data.length - this.at < longestInterval && data.indexOf(lineFeed, this.at) < 0)
        return this.at;
      const byte = data[this.at]!;
      if (byte === lineFeed) {
        if (!this.ended) this.report('a list of times without its end');
        ++this.at;
        ++this.line;
        this.active = false;
        return this.at;
      }
      if (byte === opening && !this.ended) this.readInterval();
      else if (byte === closingBracket) {
        this.ended = true;
        ++this.at;
      } else if (byte === space || byte === comma || byte === carriageReturn) ++this.at;
      else this.skipDamage();
    }
    if (last) {
      if (!this.ended) this.report('a list of times without its end');
      this.active = false;
    }
    return this.at;
  }

  private report(what: string): void {
    this.builder.report(`line ${this.line}`, what);
  }

  private readInterval(): void {
    const start = this.at;
    ++this.at;
    const begin = this.readTime(letterB);
    if (this.data[this.at] === comma) ++this.at;
    const end = this.readTime(letterE);
    if (this.data[this.at] !== closing || begin !== begin || end !== end) {
      this.at = start + 1;
      return this.skipDamage();
    }
    ++this.at;
    const fault = this.builder.addInterval(this.block, begin, end);
    if (fault) this.report(fault);
  }

  private skipSpaces(): void {
    while (this.data[this.at] === space) ++this.at;
  }

  /** "b: 12.5" gives 12.5; NaN if it is anything else. */
  private readTime(key: number): number {
    this.skipSpaces();
    if (this.data[this.at] !== key || this.data[this.at + 1] !== colon) return NaN;
    this.at += 2;
    this.skipSpaces();
    return this.readNumber();
  }

  /** The exact value of up to fifteen digits: an integer by a power of ten that is itself exact. */
  private readNumber(): number {
    const data = this.data;
    const start = this.at;
    let at = start;
    let digits = 0;
    let value = 0;
    let scale = 0;
    for (; data[at]! >= zero && data[at]! <= nine; ++at, ++digits) value = value * 10 + (data[at]! - zero);
    if (data[at] === point)
      for (++at; data[at]! >= zero && data[at]! <= nine; ++at, ++digits, --scale)
        value = value * 10 + (data[at]! - zero);
    const mantissaEnd = at;
    if (digits > 0 && (data[at] === letterE || data[at] === capitalE)) {
      ++at;
      const negative = data[at] === minus;
      if (negative || data[at] === plus) ++at;
      let exponent = 0;
      const firstDigit = at;
      for (; data[at]! >= zero && data[at]! <= nine; ++at) exponent = exponent * 10 + (data[at]! - zero);
      if (at === firstDigit) return NaN;
      scale += negative ? -exponent : exponent;
    }
    this.at = at;
    if (digits === 0) return NaN;
    if (digits > 15 || scale > 22 || scale < -22)
      return Number(
        String.fromCharCode(...data.subarray(start, mantissaEnd)) + 'e' + exponentOf(data, mantissaEnd, at),
      );
    return scale < 0 ? value / powers[-scale]! : value * powers[scale]!;
  }

  /** Over bytes that are no interval, to the end of the next one or of the line. */
  private skipDamage(): void {
    this.report(
      this.ended ? 'something after a list of times' : 'an interval that cannot be read is left out',
    );
    const { data } = this;
    while (this.at < data.length) {
      const byte = data[this.at]!;
      if (byte === lineFeed || (byte === closingBracket && !this.ended)) return;
      ++this.at;
      if (byte === closing && !this.ended) return;
    }
  }
}

function exponentOf(data: Uint8Array, from: number, to: number): string {
  return from < to ? String.fromCharCode(...data.subarray(from + 1, to)) : '0';
}
