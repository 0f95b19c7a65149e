// The peer of Node programs: child_lines.mjs COMMAND..., through node:readline.

import { spawn } from 'node:child_process';
import { createInterface } from 'node:readline';

const [, , program, ...args] = process.argv;
const start = performance.now();
const child = spawn(program, args, { stdio: ['ignore', 'pipe', 'inherit'] });
let lines = 0;
let sum = 0;
createInterface({ input: child.stdout, crlfDelay: Infinity })
  .on('line', (line) => {
    lines += 1;
    sum += line.charCodeAt(line.length - 1) + line.length;
  })
  .on('close', () => console.log(`ms=${(performance.now() - start).toFixed(1)} lines=${lines} sum=${sum}`));
