// An operator writes filter scripts, is shown what is wrong with them, and runs them.
import assert from 'node:assert/strict'
import { readFileSync } from 'node:fs'
import { join } from 'node:path'
import { test } from 'node:test'
import { openPage, picture, withConsole } from './console.mjs'

let console
let page

const button = name => page.getByRole('button', { name, exact: true })
const editor = () => page.getByRole('textbox', { name: 'Source text' })
const shown = async text => {
  await page.waitForFunction(
    wanted => {
      const lines = document.querySelector('.source-host')?.shadowRoot?.querySelectorAll('.cm-line')
      return lines && [...lines].map(line => line.textContent).join('\n') === wanted
    },
    text.replaceAll('\r\n', '\n'),
  )
}
const loaded = chunk =>
  page.evaluate(name => performance.getEntriesByType('resource').some(entry => entry.name.includes(name)), `/${chunk}-`)
/** What the row holds, in 16-bit characters. */
const stored = name => Buffer.from(console.sql(`select hex(scriptcontent) from scriptengine where scriptname='${name}'`), 'hex').toString('utf16le')
const becomes = async (name, text) => {
  for (let i = 0; i < 1200 && stored(name) !== text; ++i) await page.waitForTimeout(50)
  assert.equal(stored(name), text)
}
const focused = () => page.evaluate(() => document.activeElement.closest('[data-control]')?.dataset.control)

/** Makes a script and puts this text into the editor. */
async function write(name, text, position) {
  await page.getByRole('combobox', { name: 'Function Name' }).fill(name)
  await button('Create new Script from Template').click()
  await editor().getByText(`Function ${name}(input)`).waitFor()
  await editor().click()
  await page.keyboard.press('Control+a')
  await page.keyboard.insertText(text)
  if (position === undefined) return
  await page.getByRole('combobox', { name: 'Position' }).click()
  await page.getByRole('option', { name: position, exact: true }).click()
}

withConsole({}, started => ({ console, page } = started))

test('the editor is loaded where there is source text, and starts from the template', async () => {
  assert.equal(await loaded('editor'), false)
  await openPage(page, 'Script engine', 'ScriptEngine')
  await editor().waitFor()
  assert.equal(await loaded('editor'), true)
  await page.getByRole('combobox', { name: 'Function Name' }).fill('my script')
  await button('Create new Script from Template').click()
  const template =
    "Function my_script(input)\r\nOn Error Resume Next\r\n\r\n\tmy_script=0\t\t\t'set return value (always Integer)\r\n" +
    "\t'msgbox input\t\t\t'output Testdata\r\n\r\n\r\nEnd Function \r\n"
  await shown(template)
  assert.equal(stored('my_script'), template)
  await picture(page, 'script')

  // What is not touched keeps its line ends.
  await editor().click()
  await page.keyboard.press('Control+Home')
  await page.keyboard.press('End')
  await page.keyboard.type(" ' <b>grün</b> 😀")
  await button('Save').click()
  await becomes('my_script', template.replace('(input)', "(input) ' <b>grün</b> 😀"))
})

test('what was typed is there after saving and after a reload, and can be undone', async () => {
  await editor().click()
  await page.keyboard.press('Control+a')
  await page.keyboard.type('Function my_script(input)\nIf Len(input) > 3 Then\nmy_script = (1')
  await page.keyboard.type(')\nEnd If\nEnd Function\n')
  const text = 'Function my_script(input)\n\tIf Len(input) > 3 Then\n\t\tmy_script = (1)\n\tEnd If\nEnd Function\n'
  await shown(text)
  // A click on the button comes before the pause in which typing is sent.
  await button('Save').click()
  await becomes('my_script', text.replaceAll('\n', '\r\n'))
  await page.reload()
  await shown(text)
  await editor().click()
  await page.keyboard.press('Control+End')
  await page.keyboard.type("' the last key")
  await page.reload()
  await shown(`${text}' the last key`)
  await editor().click()
  await page.keyboard.press('Control+z')
  await shown(`${text}' the last key`)
  await page.keyboard.press('Control+End')
  await page.keyboard.type('x')
  await page.keyboard.press('Control+z')
  await shown(`${text}' the last key`)
})

test('Tab indents, and the keyboard can leave', async () => {
  await editor().click()
  await page.keyboard.press('Control+End')
  await page.keyboard.press('Enter')
  await page.keyboard.press('Tab')
  await editor().getByText('the last key').waitFor()
  assert.match(await focused(), /scriptsource$/)
  await page.keyboard.press('Escape')
  await page.keyboard.press('Tab')
  assert.doesNotMatch(await focused(), /scriptsource$/)
  const described = await editor().evaluate(element =>
    element.getRootNode().getElementById(element.getAttribute('aria-describedby')).textContent,
  )
  assert.match(described, /Esc, then Tab leaves the editor/)
})

test('searching finds in the text', async () => {
  await editor().click()
  await page.keyboard.press('Control+f')
  await page.keyboard.type('my_script')
  await page.keyboard.press('Enter')
  await page.locator('.cm-searchMatch-selected').waitFor()
  assert.equal(await page.locator('.cm-searchMatch').count(), 2)
  await picture(page, 'script-search')
  await page.keyboard.press('Escape')
  await page.getByRole('textbox', { name: 'Find' }).waitFor({ state: 'detached' })
})

test('an error is marked in its line, listed, and jumped to', async () => {
  await write('broken', 'Function broken(input)\n  broken = 1\n  broken = 1 / (broken - 1)\nEnd Function\n')
  await button('Execute Script').click()
  const entry = button('broken, line 3, column 3 Division by zero')
  await entry.waitFor()
  assert.match(await page.locator('.cm-marked-line').textContent(), /broken - 1/)
  await page.getByText('A step of it failed: broken(3, 3): Division by zero').first().waitFor()
  await editor().click()
  await page.keyboard.press('Control+Home')
  await page.keyboard.type('\n\n')
  await entry.focus()
  await page.keyboard.press('Enter')
  await page.keyboard.type('here:')
  await editor().getByText('here:broken = 1').waitFor()
  assert.equal(await page.locator('.cm-marked-number').textContent(), '5')
  await picture(page, 'script-error')

  await editor().click()
  await page.keyboard.press('Control+a')
  await page.keyboard.insertText('Function broken(\n')
  await button('Save').click()
  await button('broken, line 1, column 17 Expected identifier').waitFor()
  await page.keyboard.press('Escape')
})

test('the scripts of a position are run, and may ask', async () => {
  await write('two', 'Function two(input)\n  MsgBox input, 64, "From a script"\n  two = 2\nEnd Function\n', 'CONNECT')
  await button('Save').click()
  await write('one', 'Function one(input)\n  one = 1\nEnd Function\n', 'CONNECT')
  await button('Execute all scripts of <position>').click()
  const box = page.getByRole('alertdialog', { name: 'From a script' })
  await box.getByText('Testdata').waitFor()
  await box.getByRole('button', { name: 'OK' }).click()
  await page.getByText('The result of your scripts are: 3').waitFor()
  const log = readFileSync(join(console.folder, 'Scripts.log'), 'utf8')
  assert.match(log, /^\d{14}: (one\.CONNECT = 1\n\d{14}: two\.CONNECT = 2|two\.CONNECT = 2\n\d{14}: one\.CONNECT = 1)\n$/)
  // What another script does wrong is told, but it is not here.
  await page.getByText('broken, line 1, column 17').waitFor()
  assert.equal(await page.locator('.cm-marked-line').count(), 0)
  await picture(page, 'script-run')
})

test('a script is deleted after a question', async () => {
  await button('Delete from Database').click()
  await page.getByRole('alertdialog', { name: 'Delete Script' }).getByRole('button', { name: 'Cancel' }).click()
  assert.equal(console.sql("select count(*) from scriptengine where scriptname='one'"), '1')
  await button('Delete from Database').click()
  await page.getByRole('alertdialog', { name: 'Delete Script' }).getByRole('button', { name: 'OK' }).click()
  await console.becomes("select count(*) from scriptengine where scriptname='one'", '0')
  await shown('')
  // Going back must not bring the script into the next one.
  await editor().click()
  await page.keyboard.press('Control+z')
  await shown('')
})
