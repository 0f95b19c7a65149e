// A peer of the event benchmarks: fetch and JSON.parse. node event_reader.mjs URL
const started = performance.now();
const latencies = [];
let events = 0;
let text = 0;
let data = [];

function takeLine(line) {
  if (line.startsWith('data:')) {
    data.push(line.slice(line[5] === ' ' ? 6 : 5));
  } else if (line === '' && data.length > 0) {
    events += 1;
    const frame = JSON.parse(data.join('\n'));
    data = [];
    if (frame.t) latencies.push((Number(process.hrtime.bigint()) - frame.t) / 1e3);
    if (frame.delta) text += frame.delta.length;
  }
}

const decoder = new TextDecoder();
let rest = '';
for await (const chunk of (await fetch(process.argv[2])).body) {
  const lines = (rest + decoder.decode(chunk, { stream: true })).split('\n');
  rest = lines.pop();
  for (const line of lines) takeLine(line);
}

let report = `ms=${(performance.now() - started).toFixed(1)} events=${events} text=${text}`;
if (latencies.length > 0) {
  latencies.sort((a, b) => a - b);
  const at = (share) => latencies[Math.floor(latencies.length * share)].toFixed(0);
  const cpu = process.cpuUsage();
  report += ` p50_us=${at(0.5)} p99_us=${at(0.99)}`;
  report += ` cpu_us=${((cpu.user + cpu.system) / latencies.length).toFixed(1)}`;
}
console.log(report);
