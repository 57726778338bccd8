// Names are bytes of a code page that the record does not tell. Until the user says which, each byte is a character.

/** One character for each byte. */
export function bytesToText(data: Uint8Array, from = 0, to = data.length): string {
  let text = '';
  for (let at = from; at < to; at += 8192) {
    const part = data.subarray(at, Math.min(at + 8192, to));
    text += String.fromCharCode.apply(null, part as unknown as number[]); // a spread goes value by value
  }
  return text;
}

/** The bytes of such a text. */
export function textToBytes(text: string): Uint8Array {
  return Uint8Array.from(text, (character) => character.charCodeAt(0));
}

/** The code pages that names may be in, as the page offers them. */
export const encodings = [
  ['utf-8', 'UTF-8'],
  ['windows-1252', '1252 Western'],
  ['windows-1250', '1250 Central European'],
  ['windows-1251', '1251 Cyrillic'],
  ['windows-1253', '1253 Greek'],
  ['windows-1254', '1254 Turkish'],
  ['windows-1255', '1255 Hebrew'],
  ['windows-1256', '1256 Arabic'],
  ['windows-1257', '1257 Baltic'],
  ['windows-1258', '1258 Vietnamese'],
  ['windows-874', '874 Thai'],
  ['shift_jis', '932 Japanese'],
  ['gbk', '936 Simplified Chinese'],
  ['euc-kr', '949 Korean'],
  ['big5', '950 Traditional Chinese'],
] as const;

/** UTF-8 if all names are that, otherwise the code page of western Windows. */
export function guessEncoding(names: readonly string[]): string {
  const decoder = new TextDecoder('utf-8', { fatal: true });
  try {
    for (const name of names) if (!isAscii(name)) decoder.decode(textToBytes(name));
    return 'utf-8';
  } catch {
    return 'windows-1252';
  }
}

export function decodeNames(names: readonly string[], encoding: string): string[] {
  if (encoding === 'windows-1252') return names.map(fromWestern);
  const decoder = new TextDecoder(encoding, { ignoreBOM: true });
  return names.map((name) => (isAscii(name) ? name : decoder.decode(textToBytes(name))));
}

/** What 1252 has from 0x80 to 0x9F. By hand, since the decoder of some versions of Node takes it for ISO 8859-1. */
const western = '€\x81‚ƒ„…†‡ˆ‰Š‹Œ\x8dŽ\x8f\x90‘’“”•–—˜™š›œ\x9džŸ';

function fromWestern(name: string): string {
  return name.replace(/[\x80-\x9f]/g, (character) => western[character.charCodeAt(0) - 0x80]!);
}

/** The bytes of a text that was read in 1252, one character for each; what 1252 does not have becomes a question mark. */
export function bytesOfWestern(text: string): string {
  return text.replace(/[^\x00-\x7f\xa0-\xff]/g, (character) => {
    const place = western.indexOf(character);
    return place < 0 ? '?' : String.fromCharCode(0x80 + place);
  });
}

function isAscii(text: string): boolean {
  return /^[\x00-\x7f]*$/.test(text);
}
