// The command line: converts a record for other programs, and compares two for a build that guards its timings.
import { once } from 'node:events';
import { createReadStream, createWriteStream, openSync } from 'node:fs';
import { basename } from 'node:path';
import type { Writable } from 'node:stream';
import { decodeNames, encodings, guessEncoding } from '../src/record/bytes';
import { chromeTrace, csv, speedscope } from '../src/record/exports';
import { makeProfile } from '../src/record/profile';
import { statisticsByName } from '../src/record/statistics';
import { RecordReader } from '../src/record/reader';
import { compareRecords, type Read } from './compare';
import { parse, Usage, usage, type Command } from './arguments';

/** A comparison has more of them. */
const status = { well: 0, failed: 2 };

async function read(path: string, encoding: string | undefined): Promise<Read> {
  const reader = new RecordReader();
  for await (const part of createReadStream(path, { highWaterMark: 4 << 20 })) reader.push(part as Buffer);
  const raw = reader.finish();
  for (const { where, what } of raw.problems) console.error(`${path}: ${where}: ${what}`);
  if (raw.moreProblems > 0) console.error(`${path}: and ${raw.moreProblems} more problems`);
  const profile = makeProfile(raw, decodeNames(raw.names, encoding ?? guessEncoding(raw.names)));
  return { path, profile, damaged: raw.problems.length + raw.moreProblems };
}

async function write(parts: Iterable<string>, path: string | undefined): Promise<void> {
  const stream: Writable =
    path === undefined ? process.stdout : createWriteStream(path, { fd: openSync(path, 'w') });
  for (const part of parts) if (!stream.write(part)) await once(stream, 'drain');
  if (path === undefined) return;
  stream.end();
  await once(stream, 'finish');
}

async function run(command: Command): Promise<number> {
  if (command.encoding && !encodings.some(([name]) => name === command.encoding))
    throw new Usage(
      `there is no encoding '${command.encoding}'; there are: ${encodings.map(([name]) => name).join(' ')}`,
    );
  const record = await read(command.record, command.encoding);
  const { profile } = record;
  switch (command.kind) {
    case 'chrome':
      await write(chromeTrace(profile), command.output);
      return status.well;
    case 'speedscope':
      await write(speedscope(profile, basename(command.record)), command.output);
      return status.well;
    case 'csv':
      await write([csv(profile, statisticsByName(profile))], command.output);
      return status.well;
    case 'compare': {
      const { text, status } = compareRecords(record, await read(command.second, command.encoding), command);
      await write([text], command.output);
      return status;
    }
  }
}

function sentence(error: unknown): string {
  const { code, path, message } = error as NodeJS.ErrnoException;
  if (code === 'ENOENT') return `there is no file '${path}'`;
  if (code === 'EISDIR') return 'that is a folder, not a record';
  return message;
}

process.stdout.on('error', (error: NodeJS.ErrnoException) => {
  // Whoever reads the output has seen enough.
  if (error.code === 'EPIPE') process.exit(status.failed);
  throw error;
});
try {
  const command = parse(process.argv.slice(2));
  if (command === 'help') console.log(usage);
  else process.exitCode = await run(command);
} catch (error) {
  console.error(`profile_tool: ${sentence(error)}`);
  if (error instanceof Usage) console.error('profile_tool --help lists the commands.');
  process.exitCode = status.failed;
}
