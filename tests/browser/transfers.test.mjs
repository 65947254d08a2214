// Programs on terminals, and files that come from the browser and go to it.
import assert from 'node:assert/strict'
import { existsSync, readFileSync } from 'node:fs'
import { join } from 'node:path'
import { test } from 'node:test'
import { drop, openPage, picture, withConsole } from './console.mjs'

// Greets, echoes, obeys a few words; and tries what a terminal must not do for a stranger.
const talk = `
echo $$ > "$HOME/talk.pid"
printf 'Trying %s...\\r\\nConnected on %s\\r\\n' "$1" "$2"
printf '\\033[31mred\\033[0m \\033[38;2;200;90;0mtrue colour\\033[0m \\033[1mbold\\033[0m\\r\\n'
printf '\\033]0;stolen title\\007\\033]52;c;c3RvbGVu\\007\\033]8;;http://198.51.100.1/\\007a link\\033]8;;\\007 \\033[21t\\r\\n'
while read -r line; do
  case "$line" in
    quit) echo 221 bye; exit 7 ;;
    size) stty size ;;
    flood) exec yes flooding ;;
    *) echo "250 $line" ;;
  esac
done`

let console
let page
const rows = () => page.locator('.xterm-rows:visible')
const until = async condition => {
  for (let i = 0; i < 200 && !condition(); ++i) await new Promise(resolve => setTimeout(resolve, 50))
  assert.ok(condition())
}
const isRunning = pid => existsSync(`/proc/${pid}`) && !/^\S+ \(.*\) Z/.test(readFileSync(`/proc/${pid}/stat`, 'utf8'))
const startedPid = () => Number(readFileSync(join(console.programs, 'talk.pid'), 'utf8'))
const type = async text => {
  await page.keyboard.type(text)
  await page.keyboard.press('Enter')
}
const startProgram = async () => {
  const open = await page.getByRole('tab').count()
  await page.getByRole('button', { name: 'Start a program' }).click()
  await page.getByRole('tab').nth(open).waitFor()
  // The keyboard is there, without anybody having clicked.
  await page.waitForFunction(() => document.activeElement.closest('.terminal-body:not([hidden])'))
  await rows().getByText('Connected on 25').waitFor()
}

const programs = { talk: talk.replace('$HOME', '$(dirname "$0")') }
const context = { permissions: ['clipboard-read', 'clipboard-write'] }
withConsole({ programs, context }, async started => {
  ;({ console, page } = started)
  await openPage(page, 'All controls', 'allcontrols')
})

test('a program opens a terminal in which one types, and tells its end', async () => {
  assert.equal(await page.evaluate(() => performance.getEntriesByType('resource').some(entry => entry.name.includes('/screen-'))), false)
  await startProgram()
  await page.getByRole('tab', { name: 'talk.exe 192.0.2.1 25' }).waitFor()
  await type('EHLO here')
  await rows().getByText('250 EHLO here').waitFor()
  await picture(page, 'terminal')
  await page.getByRole('separator', { name: 'Height of the programs' }).focus()
  await page.keyboard.press('ArrowUp')
  await page.keyboard.press('ArrowUp')
  await page.locator('.xterm-screen:visible').click()
  await type('size')
  await rows().getByText(/^(1[6-9]|[2-9]\d) \d{2,3}$/).waitFor()
  assert.equal(await page.title(), 'All controls – Mirvan')
  assert.equal(await page.locator('.xterm a, .xterm-underline-1').count(), 0)
  await page.evaluate(() => navigator.clipboard.writeText('kept'))
  await page.getByRole('button', { name: 'Copy the selection, or everything' }).click()
  await page.locator('.terminal-head').getByText('Copied').waitFor()
  assert.match(await page.evaluate(() => navigator.clipboard.readText()), /^Trying 192\.0\.2\.1\.\.\.\n(.*\n)*250 EHLO here\n/)
  await page.locator('.xterm-screen:visible').click()
  await type('quit')
  await page.getByText('Ended with status 7').waitFor()
  await picture(page, 'terminal-ended')
})

test('the keyboard leaves the terminal, and a reload comes back to it', async () => {
  await startProgram()
  await type('before the reload')
  await rows().getByText('250 before the reload').waitFor()
  await page.keyboard.press('F6')
  assert.equal(await page.evaluate(() => document.activeElement.getAttribute('role')), 'tab')
  await page.keyboard.press('F6')
  assert.equal(await page.evaluate(() => document.activeElement.id), 'page')
  await page.reload()
  await page.getByRole('tab').nth(1).click()
  await rows().getByText('250 before the reload').waitFor()
  await type('after it')
  await rows().getByText('250 after it').waitFor()
})

test('a program without end neither stops the browser nor the console, and closing ends it', async () => {
  const pid = startedPid()
  await type('flood')
  await rows().getByText('flooding').first().waitFor()
  await page.waitForTimeout(1500)
  await page.getByRole('textbox', { name: 'Entry' }).fill('still here')
  await page.getByText('You typed: still here').waitFor()
  assert.ok(isRunning(pid))
  for (let open = 2; open > 0; --open) await page.getByRole('button', { name: 'Close talk.exe' }).click()
  await page.locator('.terminal-panel').waitFor({ state: 'detached' })
  await until(() => !isRunning(pid))
})

test('an offered file is fetched under its own name', async () => {
  await page.getByRole('button', { name: 'Offer a file' }).click()
  const link = page.getByRole('link', { name: 'Download list of hösts.txt' })
  await link.waitFor()
  await picture(page, 'offered')
  await page.reload()
  await page.getByRole('button', { name: /^Activity/ }).click()
  await picture(page, 'offered-drawer')
  const [download] = await Promise.all([page.waitForEvent('download'), link.click()])
  assert.equal(download.suggestedFilename(), 'list of hösts.txt')
  assert.equal(readFileSync(await download.path(), 'utf8'), 'apple.example\nbanana.example\n')
  await page.getByText('Fetched').waitFor()
  await page.locator('.drawer-head').getByRole('button', { name: 'Close' }).click()
})

test('a file is sent into a file list and chosen there', async () => {
  await page.getByRole('button', { name: 'Open a dialog' }).click()
  const dialog = page.getByRole('dialog', { name: 'A dialog' })
  const source = dialog.getByRole('textbox', { name: 'File', exact: true })
  const send = async (name, content) => {
    const [chooser] = await Promise.all([page.waitForEvent('filechooser'), dialog.getByRole('button', { name: 'From my computer…' }).click()])
    await chooser.setFiles({ name, mimeType: 'text/plain', buffer: Buffer.from(content) })
  }
  await send('hosts.txt', 'one\n')
  await page.getByText('hosts.txt was sent').first().waitFor()
  await until(() => existsSync(join(console.folder, 'upload/hosts.txt')))
  await page.waitForFunction(() => [...document.querySelectorAll('dialog input')].some(i => i.value.endsWith('\\upload\\hosts.txt')))
  await send('hosts.txt', 'two\n')
  await page.getByText('hosts.txt was sent, and kept as hosts (2).txt').first().waitFor()
  assert.equal(readFileSync(join(console.folder, 'upload/hosts (2).txt'), 'utf8'), 'two\n')
  await picture(page, 'uploaded')
  // Dropped onto the list; and dropped beside it, which must not replace the page.
  await drop(page, 'dialog .file-list .list-rows', 'dropped.txt', 'dropped\n')
  await page.waitForFunction(() => [...document.querySelectorAll('dialog input')].some(i => i.value.endsWith('\\dropped.txt')))
  await drop(page, 'dialog', 'beside.txt', 'beside\n')
  assert.ok(!existsSync(join(console.folder, 'upload/beside.txt')))
  assert.match(await source.inputValue(), /dropped\.txt$/)
  await dialog.getByRole('button', { name: 'Cancel' }).click()
  const log = readFileSync(join(console.folder, 'secrets/audit.log'), 'utf8')
  assert.match(log, /\tupload\tok\thosts \(2\)\.txt \(4 bytes\)\n/)
  assert.match(log, /\tdownload\tok\t/)
  assert.match(log, /\tcomponent\tok\tstart talk\n/)
})
