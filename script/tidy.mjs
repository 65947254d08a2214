// Runs clang-tidy on the sources in src/ that it has not yet found clean with their present contents and those of our
// headers that they include. Most of its time goes into the headers of libraries, so many sources are checked as one
// (--each: one at a time); a batch in which the compiler finds errors is split into halves.
//
// What was found clean is recorded as an empty file, named by a checksum of the contents, in the folder of the
// compiler's cache: all checkouts share the records, and keeping that folder keeps both.
import { execFile, execFileSync } from 'node:child_process'
import { createHash } from 'node:crypto'
import { existsSync, mkdirSync, readFileSync, readdirSync, rmSync, statSync, utimesSync, writeFileSync } from 'node:fs'
import { availableParallelism } from 'node:os'
import { dirname, join, resolve } from 'node:path'

const tidy = 'clang-tidy-19'
const most = process.argv.includes('--each') ? 1 : 24
const output = (...command) => execFileSync(command[0], command.slice(1), { encoding: 'utf8' }).trim()

// The network library's headers take half as long as everything else together: what includes them waits for --each.
const isDear = file => /#include <boost\/(asio|beast)/.test(readFileSync(file, 'utf8'))
const sources = output('git', 'ls-files', 'src/**.cpp').split('\n').filter(file =>
  existsSync(file) && (most === 1 || !isDear(file)))
const flags = flagsOfTheBuild()
const clean = join(output('ccache', '--get-config', 'cache_dir'), 'clang-tidy', most === 1 ? 'each' : 'joined')
mkdirSync(clean, { recursive: true })
const always = [output(tidy, '--version'), readFileSync('.clang-tidy'), flags.join(' ').replaceAll(resolve('.'), '')]

/** The union of the flags of all sources in src/. It fits each of them, as no header name has two meanings. */
function flagsOfTheBuild() {
  const found = new Set(['-std=c++20'])
  for (const { file, command } of JSON.parse(readFileSync('build/release/compile_commands.json'))) {
    if (!file.startsWith(resolve('src') + '/')) continue
    for (const [, flag] of command.matchAll(/(?<= )((?:-isystem |-I|-D)\S+)/g)) found.add(flag)
  }
  found.delete('-Dzrlconfig_EXPORTS')
  // The compiler's own folder in another place: then the C++ headers don't find those of C behind them.
  found.delete('-isystem /usr/include')
  return [...found].flatMap(flag => flag.split(' '))
}

const texts = new Map()
const text = file => texts.get(file) ?? texts.set(file, readFileSync(file, 'utf8')).get(file)

/** A file and all our files that it includes, directly or indirectly. */
function closure(file, found = new Set()) {
  found.add(file)
  for (const [, name] of text(file).matchAll(/^\s*#\s*include\s+"([^"]+)"/gm)) {
    const path = [join('src', name), join(dirname(file), name)].find(existsSync)
    if (path && !found.has(path)) closure(path, found)
  }
  return found
}

function sum(file) {
  const hash = createHash('sha256')
  for (const part of always) hash.update(part)
  for (const path of [...closure(file)].sort()) hash.update(path).update(text(path))
  return hash.digest('hex').slice(0, 32)
}

/** The names that are declared at the beginnings of lines. */
function namesIn(text) {
  const declarations = text.matchAll(/^(?! |using std|namespace|return)[\w:<>,*&[\] ]*[ *&](\w+)(?: ?[{(=;[]| :|$)/gm)
  return [...declarations].map(([, name]) => name)
}

/** The names that a source declares in unnamed namespaces. */
function ownNames(file) {
  const parts = text(file).matchAll(/^namespace \{$[^]*?^\} +\/\/ namespace$/gm)
  return new Set([...parts].flatMap(([part]) => namesIn(part)))
}

const headerNames = file => new Set([...closure(file)].filter(path => path !== file).flatMap(path => namesIn(text(path))))

/** Batches of sources whose own names do not collide, as far as that can be seen without a compiler. */
function batches(files) {
  const found = []
  const meet = (names, others) => [...names].some(name => others.has(name))
  for (const file of files) {
    const own = ownNames(file)
    const shared = headerNames(file)
    let batch = found.find(
      batch => batch.files.length < most && !meet(own, batch.own) && !meet(own, batch.shared) && !meet(shared, batch.own))
    if (!batch) found.push((batch = { files: [], own: new Set(), shared: new Set() }))
    batch.files.push(file)
    for (const name of own) batch.own.add(name)
    for (const name of shared) batch.shared.add(name)
  }
  return found.map(({ files }) => files)
}

let numbers = 0
function check(files) {
  const source = files.length === 1 ? files[0] : `build/lint/joined${numbers++}.cpp`
  if (files.length > 1) writeFileSync(source, files.map(file => `#include "${resolve(file)}"\n`).join(''))
  return new Promise(done => {
    execFile(tidy, ['--quiet', '--checks=-bugprone-suspicious-include', source, '--', ...flags],
      { maxBuffer: 1 << 26 }, (failure, stdout, stderr) => {
        if (failure && files.length > 1 && /clang-diagnostic-error/.test(stdout)) {
          const half = files.length >> 1
          done(check(files.slice(0, half)).then(first => check(files.slice(half)).then(second => first && second)))
          return
        }
        if (failure) console.log(stdout.trim() || stderr.trim())
        else for (const file of files) writeFileSync(join(clean, sum(file)), '')
        done(!failure)
      })
  })
}

const day = 24 * 60 * 60 * 1000
for (const stamp of readdirSync(clean)) {
  if (Date.now() - statSync(join(clean, stamp)).mtimeMs > 30 * day) rmSync(join(clean, stamp))
}
const changed = sources.filter(file => {
  const stamp = join(clean, sum(file))
  if (existsSync(stamp)) utimesSync(stamp, new Date(), new Date())
  return !existsSync(stamp)
})
mkdirSync('build/lint', { recursive: true })
const waiting = batches(changed)
console.log(`${changed.length} of ${sources.length} sources to check, as ${waiting.length}`)
let failed = false
await Promise.all(Array.from({ length: availableParallelism() }, async () => {
  for (let files = waiting.shift(); files; files = waiting.shift()) {
    if (!(await check(files))) failed = true
  }
}))
process.exit(failed ? 1 : 0)
