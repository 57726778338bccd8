import { expect, test } from 'vitest';
import { bytesToText, decodeNames, encodings, guessEncoding, textToBytes } from '../../src/record/bytes';

test.each([
  ['utf-8', '\xc3\xa9\xe2\x82\xac', 'é€'],
  ['windows-1252', 'caf\xe9 \x80', 'café €'],
  ['windows-1251', '\xcf\xf0\xe8\xe2\xe5\xf2', 'Привет'],
  ['shift_jis', '\x83\x5c\x83\x65\x81\x5c', 'ソテ―'],
])('Names in %s are read', (encoding, raw, text) => {
  expect(decodeNames([raw, 'plain'], encoding)).toEqual([text, 'plain']);
});

test('Every encoding that is offered is known', () => {
  for (const [name] of encodings) expect(decodeNames(['a\xe9'], name)[0]!.startsWith('a')).toBe(true);
});

test('UTF-8 is taken only if every name is that', () => {
  expect(guessEncoding(['plain', '\xc3\xa9'])).toBe('utf-8');
  expect(guessEncoding(['\xc3\xa9', '\xe9'])).toBe('windows-1252');
});

test('Bytes go to text and back', () => {
  const all = Uint8Array.from({ length: 20_000 }, (_, i) => i % 256);
  expect(textToBytes(bytesToText(all))).toEqual(all);
});
